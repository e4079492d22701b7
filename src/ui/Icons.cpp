// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QLibraryInfo>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QVersionNumber>

#include <optional>
#include <variant>

namespace {

/// What a symbol is painted with: a colour of the palette, a colour of its own, or, without either,
/// the colours of the file.
using Tint = std::variant<std::monostate, QPalette::ColorRole, QColor>;

/// The colour to paint with now. An icon engine is not told which widget it paints for; no widget
/// of this program has a palette of its own, so the application's is the right one.
std::optional<QColor> colorNow(const Tint &tint, QIcon::Mode mode)
{
    if (std::holds_alternative<std::monostate>(tint))
        return std::nullopt;
    const QPalette palette = QGuiApplication::palette();
    if (mode == QIcon::Selected)
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    const auto *role = std::get_if<QPalette::ColorRole>(&tint);
    if (mode == QIcon::Disabled)
        return palette.color(QPalette::Disabled, role ? *role : QPalette::WindowText);
    return role ? palette.color(QPalette::Active, *role) : std::get<QColor>(tint);
}

QPixmap render(const QString &path, QSize pixels, const std::optional<QColor> &color)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid() || pixels.isEmpty())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    if (color) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), *color);
    }
    painter.end();
    return QPixmap::fromImage(std::move(image));
}

/// Paints an SVG file of the resources at exactly the pixels asked for. The pixmaps are kept in
/// QPixmapCache, which is bounded and is emptied before the application object goes away.
class SymbolEngine : public QIconEngine {
public:
    SymbolEngine(QString name, const Tint &tint) : m_name(std::move(name)), m_tint(tint) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const qreal ratio = painter->device()->devicePixelRatio();
        painter->drawPixmap(rect, pixmapFor(rect.size() * ratio, ratio, mode));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        return pixmapFor(size, 1.0, mode);
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        // QIcon hands over the size in device pixels before Qt 6.8 and independent of the device
        // from then on. The library at run time decides, not the one compiled against.
        static const bool independent = QLibraryInfo::version() >= QVersionNumber(6, 8);
        return pixmapFor(independent ? size * scale : size, scale, mode);
    }

    QIconEngine *clone() const override { return new SymbolEngine(*this); }
    QString key() const override { return QStringLiteral("PlintharSymbol"); }
    QString iconName() override { return m_name; }
    bool isNull() override { return !QFile::exists(path()); }

private:
    QString path() const { return QStringLiteral(":/icons/%1.svg").arg(m_name); }

    QPixmap pixmapFor(QSize pixels, qreal ratio, QIcon::Mode mode) const
    {
        const std::optional<QColor> color = colorNow(m_tint, mode);
        const QString cacheKey = QStringLiteral("symbol/%1/%2x%3@%4/%5")
                                     .arg(m_name)
                                     .arg(pixels.width())
                                     .arg(pixels.height())
                                     .arg(ratio)
                                     .arg(color ? color->name(QColor::HexArgb) : QString());
        QPixmap pixmap;
        if (!QPixmapCache::find(cacheKey, &pixmap)) {
            pixmap = render(path(), pixels, color);
            pixmap.setDevicePixelRatio(ratio);
            QPixmapCache::insert(cacheKey, pixmap);
        }
        return pixmap;
    }

    QString m_name;
    Tint m_tint;
};

} // namespace

// Naming the resources keeps them in a program that links this library statically. The macro
// declares a global function, hence not inside the namespace.
static QIcon makeIcon(QStringView name, const Tint &tint)
{
    Q_INIT_RESOURCE(icons);
    QIcon icon(new SymbolEngine(name.toString(), tint));
    Q_ASSERT_X(!icon.isNull(), "symbolIcon", qPrintable(name.toString()));
    return icon;
}

QIcon symbolIcon(QStringView name, QPalette::ColorRole role)
{
    return makeIcon(name, role);
}

QIcon symbolIcon(QStringView name, const QColor &color)
{
    return makeIcon(name, color);
}

QIcon applicationIcon()
{
    return makeIcon(u"application", {});
}
