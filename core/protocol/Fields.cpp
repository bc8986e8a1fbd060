#include "core/protocol/Fields.h"

namespace tavren::protocol {
namespace {

template <typename Range>
std::string Join(const Range& fields, std::string_view separator) {
    std::string joined;
    bool first = true;
    for (const auto& field : fields) {
        if (!first) {
            joined += separator;
        }
        joined += field;
        first = false;
    }
    return joined;
}

}  // namespace

std::vector<std::string> SplitFields(std::string_view text, std::string_view separator,
                                     std::size_t limit) {
    std::vector<std::string> fields;
    if (text.empty()) {
        return fields;
    }
    std::size_t start = 0;
    while (!separator.empty() && (limit == kAllFields || fields.size() + 1 < limit)) {
        const std::size_t found = text.find(separator, start);
        if (found == std::string_view::npos) {
            break;
        }
        fields.emplace_back(text.substr(start, found - start));
        start = found + separator.size();
    }
    fields.emplace_back(text.substr(start));
    return fields;
}

std::string_view FieldAt(const std::vector<std::string>& fields, std::size_t index) {
    return index < fields.size() ? std::string_view(fields[index]) : std::string_view{};
}

std::string JoinFields(std::initializer_list<std::string_view> fields, std::string_view separator) {
    return Join(fields, separator);
}

std::string JoinFields(const std::vector<std::string>& fields, std::string_view separator) {
    return Join(fields, separator);
}

std::vector<std::vector<std::string>> SplitRecords(std::string_view text, std::size_t fieldLimit) {
    if (text.ends_with(kRecordSeparator)) {
        text.remove_suffix(kRecordSeparator.size());
    }
    std::vector<std::vector<std::string>> records;
    for (const std::string& record : SplitFields(text, kRecordSeparator)) {
        records.push_back(SplitFields(record, kRecordFieldSeparator, fieldLimit));
    }
    return records;
}

std::string JoinRecords(const std::vector<std::vector<std::string>>& records) {
    std::string joined;
    for (const auto& record : records) {
        joined += JoinFields(record, kRecordFieldSeparator);
        joined += kRecordSeparator;
    }
    return joined;
}

std::string_view TruthText(bool value) {
    return value ? kTrueText : kFalseText;
}

bool IsTrue(std::string_view text) {
    return text == kTrueText;
}

}  // namespace tavren::protocol
