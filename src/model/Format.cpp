// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/Format.h"

#include <array>
#include <charconv>

namespace {

/// The number as "%.<decimals>f" gives it in the C locale. QString::number() rounds 8.125 up where
/// the C library rounds to even, and printf() follows the locale that QApplication has set.
QString fixed(double number, int decimals)
{
    std::array<char, 350> text; // the longest double has 309 digits before the point
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number,
                                            std::chars_format::fixed, decimals);
    Q_ASSERT(error == std::errc());
    return QString::fromLatin1(text.data(), end - text.data());
}

QString grouped(qint64 count, QLocale locale)
{
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale.toString(count);
}

} // namespace

QString fmtTokens(qint64 count, const QLocale &locale)
{
    if (count >= 1'000'000)
        return fixed(static_cast<double>(count) / 1'000'000, 2) + u'M';
    if (count >= 10'000)
        return fixed(static_cast<double>(count) / 1'000, 1) + u'k';
    return grouped(count, locale);
}

QString fmtDuration(double seconds)
{
    const auto whole = static_cast<qint64>(seconds);
    if (whole >= 3'600)
        return QStringLiteral("%1h %2m").arg(whole / 3'600).arg(whole % 3'600 / 60);
    if (whole >= 60)
        return QStringLiteral("%1m %2s").arg(whole / 60).arg(whole % 60);
    return QStringLiteral("%1s").arg(whole);
}

QString beginningOf(const QString &text, qsizetype length)
{
    QString beginning = text.left(length);
    if (beginning.size() < text.size() && !beginning.isEmpty() &&
        beginning.back().isHighSurrogate())
        beginning.chop(1);
    return beginning;
}

QString fmtCost(double dollars)
{
    return u'$' + fixed(dollars, 2);
}
