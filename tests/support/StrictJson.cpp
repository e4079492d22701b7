// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StrictJson.h"

#include <string_view>

namespace {

/// Each function takes one production of the grammar from the left end of the text and tells
/// whether it was there.
class Checker {
public:
    explicit Checker(std::string_view text) : m_rest(text) {}

    bool document()
    {
        blanks();
        if (!object())
            return false;
        blanks();
        return m_rest.empty();
    }

private:
    unsigned char peek(size_t at = 0) const
    {
        return at < m_rest.size() ? static_cast<unsigned char>(m_rest[at]) : 0;
    }

    bool take(std::string_view wanted)
    {
        if (!m_rest.starts_with(wanted))
            return false;
        m_rest.remove_prefix(wanted.size());
        return true;
    }

    bool takeOneOf(std::string_view characters)
    {
        if (m_rest.empty() || characters.find(m_rest.front()) == std::string_view::npos)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void blanks()
    {
        while (takeOneOf(" \t\r\n"))
            ;
    }

    bool digits()
    {
        if (!takeOneOf("0123456789"))
            return false;
        while (takeOneOf("0123456789"))
            ;
        return true;
    }

    bool number()
    {
        take("-");
        if (!take("0") && !(takeOneOf("123456789") && (digits() || true)))
            return false;
        if (take(".") && !digits())
            return false;
        if (takeOneOf("eE")) {
            takeOneOf("+-");
            return digits();
        }
        return true;
    }

    bool escape()
    {
        if (takeOneOf("\"\\/bfnrt"))
            return true;
        constexpr std::string_view hex = "0123456789abcdefABCDEF";
        return take("u") && takeOneOf(hex) && takeOneOf(hex) && takeOneOf(hex) && takeOneOf(hex);
    }

    bool continuation(size_t at, unsigned char from = 0x80, unsigned char to = 0xbf) const
    {
        return peek(at) >= from && peek(at) <= to;
    }

    /// Length of the UTF-8 sequence, by the table of RFC 3629; 0 if there is none.
    size_t sequence() const
    {
        const unsigned char lead = peek();
        if (lead < 0x80)
            return 1;
        if (lead >= 0xc2 && lead <= 0xdf)
            return continuation(1) ? 2 : 0;
        if (lead >= 0xe0 && lead <= 0xef) {
            const bool second =
                continuation(1, lead == 0xe0 ? 0xa0 : 0x80, lead == 0xed ? 0x9f : 0xbf);
            return second && continuation(2) ? 3 : 0;
        }
        if (lead >= 0xf0 && lead <= 0xf4) {
            const bool second =
                continuation(1, lead == 0xf0 ? 0x90 : 0x80, lead == 0xf4 ? 0x8f : 0xbf);
            return second && continuation(2) && continuation(3) ? 4 : 0;
        }
        return 0;
    }

    bool string()
    {
        if (!take("\""))
            return false;
        while (!m_rest.empty() && peek() >= 0x20) {
            if (take("\""))
                return true;
            if (take("\\")) {
                if (!escape())
                    return false;
                continue;
            }
            const size_t length = sequence();
            if (length == 0)
                return false;
            m_rest.remove_prefix(length);
        }
        return false;
    }

    template <typename Element>
    bool list(std::string_view open, std::string_view close, Element element)
    {
        if (!take(open))
            return false;
        blanks();
        if (take(close))
            return true;
        for (;;) {
            blanks();
            if (!element())
                return false;
            blanks();
            if (take(close))
                return true;
            if (!take(","))
                return false;
        }
    }

    bool member()
    {
        if (!string())
            return false;
        blanks();
        if (!take(":"))
            return false;
        blanks();
        return value();
    }

    bool object()
    {
        return list("{", "}", [this] { return member(); });
    }

    bool value()
    {
        switch (peek()) {
        case '{':
            return object();
        case '[':
            return list("[", "]", [this] { return value(); });
        case '"':
            return string();
        default:
            return take("true") || take("false") || take("null") || number();
        }
    }

    std::string_view m_rest;
};

} // namespace

bool isStrictJsonObject(const QByteArray &text)
{
    return Checker({text.constData(), static_cast<size_t>(text.size())}).document();
}
