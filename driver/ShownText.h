#pragma once

// Texts that come from outside the program (a setting file, the catalogue, a scenario, the memory file, the
// instrument) on their way to a person: a terminal or a message box. One rule for all of them: a control
// character (C0, DEL, C1), a Unicode line or paragraph separator, a bidirectional override and a byte that is
// not part of UTF-8 are written as escapes (\n, \r, \t, \xHH, \uHHHH), so that a text can neither forge a
// line nor move the terminal's cursor nor reorder what is shown. Everything else, other languages included,
// stays as it is.

#include <cstddef>
#include <string>
#include <string_view>

namespace vss {

// How many characters of an outside text a message quotes.
inline constexpr std::size_t kQuoteLimit = 80;

// The whole text under the one rule: what every terminal and message box shows. Line ends and blanks at its
// end are dropped; our own quotes and backslashes stay, and a text the rule has already passed comes out
// unchanged.
std::string shownText(std::string_view text);

// An outside text under the one rule that also escapes backslashes and double quotes (\\ and \"), so that it
// can stand between quotes; cut after `maxChars` characters, which then end in "...".
std::string printable(std::string_view text, std::size_t maxChars = std::string_view::npos);

// An outside text quoted in a message: between double quotes, printable, cut after kQuoteLimit characters.
std::string inQuotes(std::string_view text);

// A text that printable has made (alone or between double quotes) cut after `maxChars` characters with "...",
// an escape counting as one character and never split; the closing quote stays.
std::string cutPrintable(std::string_view text, std::size_t maxChars = kQuoteLimit);

// A sentence that becomes part of another one (after a colon, before a parenthesis): without its full stop,
// so that no message ends in two.
std::string_view clause(std::string_view sentence);
// A clause that begins a sentence: its first letter in capitals.
std::string capitalized(std::string text);

// The UTF-8 byte-order mark, with which any text file the program reads may begin.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// The text without a byte-order mark at its start.
std::string_view withoutByteOrderMark(std::string_view text);

} // namespace vss
