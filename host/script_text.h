#pragma once
/// The small change of reading scripts, line by line.

#include <functional>
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

/// Calls `row` with each row of a script, until one has a fault. Empty lines and a heading above all rows are passed over.
///
/// @param name     of the file, for `problem`
/// @param row      sets `fault` where something is wrong: a clause without its full stop
/// @param problem  on false: one sentence with the file's name and the line
bool ForEachRow(const std::string& name, std::string_view text,
                const std::function<void(std::string_view line, std::string& fault)>& row, std::string& problem);

}  // namespace tavrik
