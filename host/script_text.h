#pragma once
/// The small change of reading scripts, line by line.

#include <string>
#include <string_view>

namespace tavrik {

constexpr std::string_view kBlanks = " \t\r";
/// Spreadsheets put one in front.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trim(std::string_view text);

/// The next line without its comment (from a `#` on) and the blanks around it; `text` becomes what is left.
std::string_view TakeLine(std::string_view& text);

/// For messages: what the file says, kept short and on one line.
std::string Quoted(std::string_view text);

/// Whether a line begins as a heading does: with a letter, but not as "nan" and "inf", which are numbers gone wrong.
bool IsHeading(std::string_view line);

}  // namespace tavrik
