// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Icons.h"

#include "support/GuiTestMain.h"

#include <QDir>
#include <QPainter>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Every symbol that the screens ask for, in the order of their file names.
const QStringList &symbolNames()
{
    static const QStringList names{
        QStringLiteral("arrow.clockwise"),
        QStringLiteral("arrow.triangle.branch"),
        QStringLiteral("chart.bar"),
        QStringLiteral("chart.bar.xaxis"),
        QStringLiteral("checkmark.circle"),
        QStringLiteral("checkmark.circle.fill"),
        QStringLiteral("checkmark.seal"),
        QStringLiteral("doc.plaintext"),
        QStringLiteral("doc.text"),
        QStringLiteral("doc.text.magnifyingglass"),
        QStringLiteral("exclamationmark.triangle.fill"),
        QStringLiteral("folder"),
        QStringLiteral("folder.badge.plus"),
        QStringLiteral("folder.badge.questionmark"),
        QStringLiteral("list.bullet.rectangle"),
        QStringLiteral("minus.circle"),
        QStringLiteral("moon.zzz"),
        QStringLiteral("plus"),
        QStringLiteral("plus.circle"),
        QStringLiteral("rectangle.stack"),
        QStringLiteral("tray"),
        QStringLiteral("waveform.path.ecg"),
    };
    return names;
}

QStringList svgNamesIn(const QString &folder)
{
    QStringList names;
    for (const QString &file : QDir(folder).entryList({QStringLiteral("*.svg")}, QDir::Files))
        names.append(file.chopped(4));
    names.sort();
    return names;
}

QImage imageOf(const QIcon &icon, int size, qreal ratio, QIcon::Mode mode = QIcon::Normal)
{
    return icon.pixmap(QSize(size, size), ratio, mode)
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

int strongestAlpha(const QImage &image)
{
    int alpha = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            alpha = std::max(alpha, qAlpha(image.pixel(x, y)));
    }
    return alpha;
}

/// The colours of the pixels that are covered wholly.
QSet<QRgb> solidColors(const QImage &image)
{
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 255)
                colors.insert(image.pixel(x, y));
        }
    }
    return colors;
}

/// The box around everything that is not wholly transparent.
QRect inkOf(const QImage &image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

QPalette paletteOf(const QColor &text, const QColor &disabled, const QColor &highlighted)
{
    QPalette palette;
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, disabled);
    palette.setColor(QPalette::HighlightedText, highlighted);
    return palette;
}

} // namespace

class IconsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QApplication::setPalette(m_light); }

    void filesAndNamesAgree()
    {
        QStringList expected = symbolNames();
        const QString source = QFINDTESTDATA("../../src/ui/icons");
        QVERIFY(!source.isEmpty());
        QCOMPARE(svgNamesIn(source), expected);

        expected.append(QStringLiteral("application"));
        expected.sort();
        QCOMPARE(svgNamesIn(QStringLiteral(":/icons")), expected);
    }

    void rendersAtEveryScale_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<int>("pixels");
        for (const QString &name : symbolNames()) {
            const QByteArray row = name.toUtf8();
            QTest::addRow("%s at 1", row.constData()) << name << 1.0 << 16;
            QTest::addRow("%s at 1.25", row.constData()) << name << 1.25 << 20;
            QTest::addRow("%s at 1.5", row.constData()) << name << 1.5 << 24;
            QTest::addRow("%s at 2", row.constData()) << name << 2.0 << 32;
        }
    }

    void rendersAtEveryScale()
    {
        QFETCH(QString, name);
        QFETCH(qreal, ratio);
        QFETCH(int, pixels);
        const QIcon icon = symbolIcon(name);
        QVERIFY(!icon.isNull());
        QCOMPARE(icon.name(), name);
        const QPixmap pixmap = icon.pixmap(QSize(16, 16), ratio);
        QCOMPARE(pixmap.size(), QSize(pixels, pixels));
        QCOMPARE(pixmap.devicePixelRatio(), ratio);

        const QRect ink = inkOf(pixmap.toImage());
        QVERIFY2(ink.width() >= pixels / 2 && ink.height() >= pixels / 2, "too small to be seen");
        QVERIFY2(solidColors(imageOf(icon, 16, ratio)).size() == 1, "nothing is sharp");
    }

    void staysInsideItsBox_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : symbolNames())
            QTest::newRow(qPrintable(name)) << name;
    }

    void staysInsideItsBox()
    {
        QFETCH(QString, name);
        const QImage image = imageOf(symbolIcon(name), 64, 1.0);
        const QRect inside = image.rect().adjusted(1, 1, -1, -1);
        QVERIFY2(inside.contains(inkOf(image)), "drawn up to the edge, so perhaps cut off");
    }

    void noTwoLookAlike()
    {
        for (const int size : {16, 48}) {
            QHash<QByteArray, QString> seen;
            for (const QString &name : symbolNames()) {
                const QImage image = imageOf(symbolIcon(name), size, 1.0);
                const QByteArray bytes(reinterpret_cast<const char *>(image.constBits()),
                                       image.sizeInBytes());
                QVERIFY2(!seen.contains(bytes), qPrintable(name + u' ' + seen.value(bytes)));
                seen.insert(bytes, name);
            }
        }
    }

    void oneIconFollowsThePalette()
    {
        const QIcon icon = symbolIcon(u"folder");
        for (const QPalette &palette : {m_light, m_dark, m_light}) {
            QApplication::setPalette(palette);
            const auto expect = [&](QIcon::Mode mode, const QColor &color) {
                QCOMPARE(solidColors(imageOf(icon, 16, 2.0, mode)), QSet<QRgb>{color.rgba()});
            };
            expect(QIcon::Normal, palette.color(QPalette::Active, QPalette::WindowText));
            expect(QIcon::Active, palette.color(QPalette::Active, QPalette::WindowText));
            expect(QIcon::Disabled, palette.color(QPalette::Disabled, QPalette::WindowText));
            expect(QIcon::Selected, palette.color(QPalette::Active, QPalette::HighlightedText));
        }
    }

    void aFixedColorYieldsToSelectionAndDisabling()
    {
        const QColor green(10, 160, 60);
        const QIcon icon = symbolIcon(u"checkmark.circle.fill", green);
        const auto colors = [&](QIcon::Mode mode) {
            return solidColors(imageOf(icon, 16, 1.0, mode));
        };
        QCOMPARE(colors(QIcon::Normal), QSet<QRgb>{green.rgba()});
        QCOMPARE(colors(QIcon::Selected), QSet<QRgb>{m_light.highlightedText().color().rgba()});
        QCOMPARE(colors(QIcon::Disabled), QSet<QRgb>{QColor(150, 151, 152).rgba()});
    }

    void aTranslucentRoleStaysTranslucent()
    {
        QPalette palette = m_light;
        palette.setColor(QPalette::PlaceholderText, QColor(20, 21, 22, 128));
        QApplication::setPalette(palette);
        const QIcon icon = symbolIcon(u"plus.circle", QPalette::PlaceholderText);
        QCOMPARE(strongestAlpha(imageOf(icon, 48, 1.0)), 128);
    }

    void paintsAtTheDevicesPixels()
    {
        const QIcon icon = symbolIcon(u"tray");
        for (const qreal ratio : {1.0, 1.5, 2.0}) {
            const QImage expected = imageOf(icon, 16, ratio);
            QImage canvas(expected.size(), QImage::Format_ARGB32_Premultiplied);
            canvas.setDevicePixelRatio(ratio);
            canvas.fill(Qt::transparent);
            QPainter painter(&canvas);
            icon.paint(&painter, QRect(0, 0, 16, 16));
            painter.end();
            QCOMPARE(canvas.convertToFormat(QImage::Format_ARGB32), expected);
        }
    }

    void keepsItsShapeInAnOblongBox()
    {
        const QImage image = symbolIcon(u"plus.circle")
                                 .pixmap(QSize(96, 48), 1.0)
                                 .toImage()
                                 .convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(96, 48));
        const QRect ink = inkOf(image);
        QCOMPARE(ink.width(), ink.height());
    }

    void theApplicationIconKeepsItsColors()
    {
        const QIcon icon = applicationIcon();
        const QImage normal = imageOf(icon, 48, 1.0);
        QVERIFY(solidColors(normal).size() > 3);
        QCOMPARE(imageOf(icon, 48, 1.0, QIcon::Selected), normal);
        QApplication::setPalette(m_dark);
        QCOMPARE(imageOf(icon, 48, 1.0), normal);
    }

    void aWrongNameIsLoud()
    {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit noCoreFile{0, 0};
            setrlimit(RLIMIT_CORE, &noCoreFile);
            std::signal(SIGABRT, SIG_DFL);
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
            const QIcon icon = symbolIcon(u"no.such.symbol");
            const bool empty = icon.isNull() && icon.pixmap(QSize(16, 16), 1.0).isNull();
            _exit(empty ? 0 : 1);
        }
        QVERIFY(child > 0);
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
#ifdef QT_NO_DEBUG
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
#else
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT);
#endif
    }

private:
    const QPalette m_light =
        paletteOf(QColor(20, 21, 22), QColor(150, 151, 152), QColor(250, 251, 252));
    const QPalette m_dark = paletteOf(QColor(230, 231, 232), QColor(90, 91, 92), QColor(1, 2, 3));
};

PLINTHAR_GUI_TEST_MAIN(IconsTest)
#include "IconsTest.moc"
