#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// Payload fields. Fields are joined with ":" (channel ":" text, user ":" password) or ";" (lists);
// lists inside a field use two control characters: U+0002 between records and U+0001 between
// the fields of a record. Truth values travel as "True" and "False".
namespace tavren::protocol {

inline constexpr std::string_view kFieldSeparator = ":";
inline constexpr std::string_view kListSeparator = ";";
inline constexpr std::string_view kRecordFieldSeparator = "\x01";
inline constexpr std::string_view kRecordSeparator = "\x02";
inline constexpr std::string_view kTrueText = "True";
inline constexpr std::string_view kFalseText = "False";

// No limit on the number of fields.
inline constexpr std::size_t kAllFields = 0;

// Splits `text` at `separator`. With a limit of n, at most n fields come out and the last one
// keeps any further separators, so a chat line "General:a:b" split with limit 2 is
// {"General", "a:b"}. An empty text has no fields at all; an empty separator leaves the text whole.
std::vector<std::string> SplitFields(std::string_view text, std::string_view separator,
                                     std::size_t limit = kAllFields);

// The field at `index`, or "" when the payload had fewer fields: a short payload reads as empty
// fields rather than failing.
std::string_view FieldAt(const std::vector<std::string>& fields, std::size_t index);

std::string JoinFields(std::initializer_list<std::string_view> fields, std::string_view separator);
std::string JoinFields(const std::vector<std::string>& fields, std::string_view separator);

// Records separated (or ended) by U+0002, each split at U+0001 with the given per-record limit.
// A trailing U+0002 does not make an extra empty record.
std::vector<std::vector<std::string>> SplitRecords(std::string_view text,
                                                   std::size_t fieldLimit = kAllFields);
// Each record's fields joined by U+0001 and ended by U+0002, as mail and search lists are written.
std::string JoinRecords(const std::vector<std::vector<std::string>>& records);

std::string_view TruthText(bool value);
// Only the exact text "True" is true.
bool IsTrue(std::string_view text);

}  // namespace tavren::protocol
