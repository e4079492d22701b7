// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstring>

/// Takes the bytes of an input as decisions, one after the other, so that a fuzzer which knows of
/// bytes only makes values of any shape. Behind the end every decision is the first one.
class Choices {
public:
    explicit Choices(const QByteArray &bytes) : m_rest(bytes) {}

    bool atEnd() const { return m_rest.isEmpty(); }

    /// A number from 0 up to, but without, `bound`, which is at most 65,536.
    int below(int bound)
    {
        unsigned number = 0;
        for (int most = 1; most < bound; most *= 256)
            number = number * 256 + static_cast<unsigned char>(bytes(1).append('\0').front());
        return static_cast<int>(number % static_cast<unsigned>(bound));
    }

    template <typename T, size_t Count>
    const T &oneOf(const std::array<T, Count> &choices)
    {
        return choices[static_cast<size_t>(below(int(Count)))];
    }

    /// A value made of the bytes as they are.
    template <typename T>
    T value()
    {
        const QByteArray taken = bytes(sizeof(T)).leftJustified(sizeof(T), '\0');
        T value;
        std::memcpy(&value, taken.constData(), sizeof(T));
        return value;
    }

    /// At most that many bytes.
    QByteArray bytes(qsizetype most)
    {
        const QByteArray taken = m_rest.left(most);
        m_rest = m_rest.mid(most);
        return taken;
    }

    /// A text of up to 255 bytes, such as any program can get to know; what is no UTF-8 in it has
    /// become replacement characters.
    QString text() { return QString::fromUtf8(bytes(below(256))); }

    /// The same without a certain character.
    QString textWithout(QChar separator) { return text().remove(separator); }

private:
    QByteArray m_rest;
};
