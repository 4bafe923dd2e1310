#include "driver/ShownText.h"

#include <algorithm>

namespace vss {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

// One character of UTF-8 at the start of a text: its length in bytes and its code point; length 0 when the
// bytes there are not UTF-8 (a stray continuation byte, a cut, overlong or surrogate sequence).
struct Utf8 {
    std::size_t length = 0;
    char32_t code = 0;
};

Utf8 decode(std::string_view s) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {1, lead};
    std::size_t length = 0;
    char32_t code = 0;
    char32_t lowest = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2, code = lead & 0x1F, lowest = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, code = lead & 0x0F, lowest = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, code = lead & 0x07, lowest = 0x10000;
    } else {
        return {};
    }
    if (s.size() < length)
        return {};
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return {};
        code = (code << 6) | (byte(i) & 0x3F);
    }
    if (code < lowest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return {};
    return {length, code};
}

// Characters that move the cursor, end a line, or change the order in which the text around them is shown.
bool escaped(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029 || c == 0x200E || c == 0x200F ||
           (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

void appendHex(std::string& out, char32_t value, int digits) {
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        out += kHex[(value >> shift) & 0xF];
}

std::string applyRule(std::string_view text, bool escapeQuotes, std::size_t maxChars) {
    std::string out;
    out.reserve(text.size() < maxChars ? text.size() + 8 : maxChars + 8);
    for (std::size_t chars = 0; !text.empty(); ++chars) {
        if (chars == maxChars) {
            out += "...";
            break;
        }
        const Utf8 u = decode(text);
        if (u.length == 0) {
            out += "\\x";
            appendHex(out, static_cast<unsigned char>(text.front()), 2);
            text.remove_prefix(1);
            continue;
        }
        const char32_t c = u.code;
        if (escapeQuotes && (c == '\\' || c == '"')) {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else if (escaped(c) && c < 0x80) {
            out += "\\x";
            appendHex(out, c, 2);
        } else if (escaped(c)) {
            out += "\\u";
            appendHex(out, c, 4);
        } else {
            out.append(text.substr(0, u.length));
        }
        text.remove_prefix(u.length);
    }
    return out;
}

// The length in bytes of the character or escape at the start of a printable text.
std::size_t unitLength(std::string_view s) {
    if (s.front() == '\\' && s.size() >= 2)
        return s[1] == 'x'   ? std::min<std::size_t>(4, s.size())
               : s[1] == 'u' ? std::min<std::size_t>(6, s.size())
                             : 2;
    const Utf8 u = decode(s);
    return u.length == 0 ? 1 : u.length;
}

} // namespace

std::string shownText(std::string_view text) {
    while (!text.empty() &&
           (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1); // a driver's message often ends in a line end
    return applyRule(text, false, std::string_view::npos);
}

std::string printable(std::string_view text, std::size_t maxChars) {
    return applyRule(text, true, maxChars);
}

std::string inQuotes(std::string_view text) {
    return "\"" + printable(text, kQuoteLimit) + "\"";
}

std::string cutPrintable(std::string_view text, std::size_t maxChars) {
    const bool wrapped = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    const std::string_view inner = wrapped ? text.substr(1, text.size() - 2) : text;
    std::size_t end = 0;
    for (std::size_t chars = 0; end < inner.size(); ++chars) {
        if (chars == maxChars) {
            const std::string cut = std::string(inner.substr(0, end)) + "...";
            return wrapped ? "\"" + cut + "\"" : cut;
        }
        end += unitLength(inner.substr(end));
    }
    return std::string(text);
}

std::string_view clause(std::string_view sentence) {
    if (sentence.ends_with('.') && !sentence.ends_with("..."))
        sentence.remove_suffix(1);
    return sentence;
}

std::string capitalized(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

std::string_view withoutByteOrderMark(std::string_view text) {
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    return text;
}

} // namespace vss
