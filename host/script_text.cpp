#include "host/script_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrik {

std::string_view Trim(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return Trim(line.substr(0, line.find('#')));
}

std::string Quoted(std::string_view text) {
    std::string clean(text.substr(0, 40));
    std::replace_if(
        clean.begin(), clean.end(), [](unsigned char c) { return c < 32 || c == 127; }, '?');
    return '"' + clean + '"';
}

bool IsHeading(std::string_view line) {
    if (line.empty() || line.starts_with("nan") || line.starts_with("inf")) return false;
    const char c = line.front();
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool ForEachRow(const std::string& name, std::string_view text,
                const std::function<void(std::string_view line, std::string& fault)>& row, std::string& problem) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    bool mayBeHeading = true;
    for (std::size_t lineNumber = 1; !text.empty(); ++lineNumber) {
        const std::string_view line = TakeLine(text);
        if (line.empty()) continue;
        const bool isHeading = mayBeHeading && IsHeading(line);
        mayBeHeading = false;
        if (isHeading) continue;
        std::string fault;
        row(line, fault);
        if (fault.empty()) continue;
        problem = fmt::format("{}: line {}: {}.", name, lineNumber, fault);
        return false;
    }
    return true;
}

}  // namespace tavrik
