// Splits, joins and converts arbitrary payload text and checks the laws the rest of the program
// relies on: a split joins back to its text, a limit is respected, no unlimited field contains the
// separator, every byte string survives the code-page round trip, and a parsed frame re-encodes
// to its bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/protocol/CodePage1252.h"
#include "core/protocol/Fields.h"
#include "core/protocol/Frame.h"

namespace {

using namespace tavren::protocol;

void Check(bool condition) {
    if (!condition) {
        std::abort();
    }
}

constexpr std::string_view kSeparators[] = {":", ";", "\x01", "\x02", " - ", "::", ""};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::size_t limit = data[0] % 8;  // 0 means no limit
    const std::string_view separator = kSeparators[data[1] % std::size(kSeparators)];
    const std::string_view text(reinterpret_cast<const char*>(data + 2), size - 2);

    const std::vector<std::string> fields = SplitFields(text, separator, limit);
    Check(text.empty() == fields.empty());
    Check(limit == kAllFields || fields.size() <= limit);
    Check(JoinFields(fields, separator) == text);
    if (!separator.empty() && (limit == kAllFields || fields.size() < limit)) {
        for (const std::string& field : fields) {
            Check(field.find(separator) == std::string::npos);
        }
    }
    Check(FieldAt(fields, fields.size()).empty());

    const auto records = SplitRecords(text, limit);
    for (const auto& record : records) {
        Check(limit == kAllFields || record.size() <= limit);
    }
    const std::string rejoined = JoinRecords(records);
    Check(rejoined.size() <= text.size() + 1);

    const std::string utf8 = Cp1252ToUtf8(text);
    Check(Utf8ToCp1252(utf8) == text);
    const std::string narrowed = Utf8ToCp1252(text);
    Check(narrowed.size() <= text.size());
    Check(Utf8ToCp1252(Cp1252ToUtf8(narrowed)) == narrowed);

    if (const auto frame = ParseFrame(text)) {
        Check(EncodeFrame(frame->code, frame->payload) == text);
    }
    return 0;
}
