#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// One item of the server's news: a title and its text (lines joined with "\n").
struct NewsItem {
    std::string title;
    std::string text;
    bool operator==(const NewsItem&) const = default;
};

// The server's news, kept in a text file the operator edits while the server runs (--news). An
// item starts with a line "# " + title; the lines after it, up to the next title, are its text.
// Lines before the first title are a comment. The file is read again when it has changed since
// the last login that asked, so new news reach the next login without a restart. A file that is
// missing, unreadable or too large means no news (and says so in the log, once per change).
class NewsFile {
  public:
    static constexpr std::size_t kLargestFile = 64 * 1024;
    static constexpr std::size_t kMostItems = 20;
    // Each item travels as one frame: title and text together stay well under any payload bound.
    static constexpr std::size_t kLargestTitle = 200;
    static constexpr std::size_t kLargestText = 4000;

    explicit NewsFile(std::filesystem::path path);

    const std::filesystem::path& path() const { return path_; }
    // The items as the file holds them now.
    const std::vector<NewsItem>& current();

    // The items of a file's text: control bytes other than line breaks dropped, titles and texts
    // trimmed and cut to their bounds, items without title and text left out.
    static std::vector<NewsItem> parse(std::string_view text);
    // An item as the (4, 3) payload: title U+0001 text.
    static std::string payload(const NewsItem& item);

  private:
    std::filesystem::path path_;
    bool read_ = false;
    bool unreadable_ = false;
    std::filesystem::file_time_type stamp_{};
    std::uintmax_t size_ = 0;
    std::vector<NewsItem> items_;
};

}  // namespace tavren::server
