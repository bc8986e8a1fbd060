#include "server/base/NewsFile.h"

#include <fstream>
#include <iterator>
#include <system_error>

#include "server/base/Log.h"

namespace tavren::server {

namespace {

std::string trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    const auto end = text.find_last_not_of(" \t");
    return std::string(text.substr(begin, end - begin + 1));
}

// Keeps printable bytes (the code page's upper half included) and tabs; the separators U+0001
// and U+0002 and every other control byte go.
std::string printable(std::string_view line) {
    std::string kept;
    kept.reserve(line.size());
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 || c == '\t') {
            kept += c;
        }
    }
    return kept;
}

void finish(NewsItem& item, std::vector<NewsItem>& items) {
    while (!item.text.empty() && (item.text.back() == '\n' || item.text.back() == ' ')) {
        item.text.pop_back();
    }
    const auto start = item.text.find_first_not_of('\n');
    item.text = start == std::string::npos ? std::string() : item.text.substr(start);
    if (item.text.size() > NewsFile::kLargestText) {
        item.text.resize(NewsFile::kLargestText);
    }
    if ((!item.title.empty() || !item.text.empty()) && items.size() < NewsFile::kMostItems) {
        items.push_back(std::move(item));
    }
    item = NewsItem{};
}

}  // namespace

NewsFile::NewsFile(std::filesystem::path path) : path_(std::move(path)) {}

std::vector<NewsItem> NewsFile::parse(std::string_view text) {
    std::vector<NewsItem> items;
    NewsItem item;
    bool inItem = false;
    std::size_t from = 0;
    while (from <= text.size()) {
        auto end = text.find('\n', from);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        const std::string line = printable(text.substr(from, end - from));
        from = end + 1;
        if (line.rfind("# ", 0) == 0 || line == "#") {
            if (inItem) {
                finish(item, items);
            }
            inItem = true;
            item.title = trimmed(std::string_view(line).substr(1)).substr(0, kLargestTitle);
            continue;
        }
        if (inItem && item.text.size() <= kLargestText) {
            item.text += trimmed(line);
            item.text += '\n';
        }
    }
    if (inItem) {
        finish(item, items);
    }
    return items;
}

std::string NewsFile::payload(const NewsItem& item) {
    return item.title + '\x01' + item.text;
}

const std::vector<NewsItem>& NewsFile::current() {
    std::error_code error;
    const auto stamp = std::filesystem::last_write_time(path_, error);
    std::uintmax_t size = 0;
    if (!error) {
        size = std::filesystem::file_size(path_, error);
    }
    if (error) {
        if (!unreadable_) {
            Log::warn("news file " + path_.string() + " cannot be read: " + error.message());
        }
        unreadable_ = true;
        read_ = false;
        items_.clear();
        return items_;
    }
    unreadable_ = false;
    if (read_ && stamp == stamp_ && size == size_) {
        return items_;
    }
    read_ = true;
    stamp_ = stamp;
    size_ = size;
    items_.clear();
    if (size > kLargestFile) {
        Log::warn("news file " + path_.string() + " is larger than " +
                  std::to_string(kLargestFile) + " bytes; no news are sent");
        return items_;
    }
    std::ifstream in(path_, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    items_ = parse(text);
    Log::info("news file " + path_.string() + ": " + std::to_string(items_.size()) + " item(s)");
    return items_;
}

}  // namespace tavren::server
