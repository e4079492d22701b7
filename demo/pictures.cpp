// SPDX-License-Identifier: GPL-3.0-or-later

// Opens the program's window on the home that it finds, and saves a picture of every tab in a light
// and in a dark palette. Called by scripts/pictures, inside the demo.

#include "DarkPalette.h"
#include "app/ContentView.h"
#include "app/Environment.h"
#include "app/PlintharApp.h"
#include "live/LiveModel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QHash>
#include <QImageWriter>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace {

constexpr QSize windowSize(1440, 810); // 16:9, as software centres like it
/// What is still the same after this is finished. (The table of running agents changes every two
/// seconds.)
constexpr int stillness = 400; // ms
constexpr int patience = 60'000;

const QString shownFile = QStringLiteral("src/tides.ts");

struct Tab {
    const char *name;    ///< of the picture
    const char *content; ///< the object name of the list that has to be filled; none for charts
    int rows;            ///< that it has at the least
};

constexpr std::array tabs{Tab{"sessions", "sessionsTable", 10}, Tab{"live", "agents", 5},
                          Tab{"review", "changes", 10}, Tab{"usage", nullptr, 0},
                          Tab{"context", "contextFiles", 5}};

void pass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Condition>
bool waitUntil(Condition condition)
{
    for (const QDeadlineTimer deadline(patience); !deadline.hasExpired(); pass(20)) {
        if (condition())
            return true;
    }
    return false;
}

bool isNear(QRgb a, QRgb b, int distance)
{
    return std::abs(qRed(a) - qRed(b)) <= distance && std::abs(qGreen(a) - qGreen(b)) <= distance &&
           std::abs(qBlue(a) - qBlue(b)) <= distance;
}

/// Those of the colours, which come in the order of their importance, that are not near an earlier
/// one.
QList<QRgb> different(const QList<QRgb> &colors, int distance)
{
    QList<QRgb> kept;
    for (const QRgb color : colors) {
        if (std::none_of(kept.cbegin(), kept.cend(),
                         [&](QRgb other) { return isNear(color, other, distance); }))
            kept.append(color);
    }
    return kept;
}

/// The picture in 256 colours, which makes it half as large and nobody sees: what goes are shades
/// at the edges of letters, as few as will do.
QImage inFewColors(const QImage &picture)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x)
            ++counts[line[x]];
    }
    QList<QRgb> colors = counts.keys();
    std::sort(colors.begin(), colors.end(), [&counts](QRgb a, QRgb b) {
        return std::pair(counts[a], a) > std::pair(counts[b], b);
    });
    QList<QRgb> table = colors;
    for (int distance = 1; table.size() > 256; ++distance)
        table = different(colors, distance);
    return picture.convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither);
}

class Photographer {
public:
    Photographer(ContentView &window, const QDir &folder) : m_window(window), m_folder(folder) {}

    bool open()
    {
        m_window.resize(windowSize);
        return waitUntil([this] { return pages() != nullptr; });
    }

    bool takeAll(const QString &scheme)
    {
        // Live comes last: by then its agents have done something.
        for (const size_t tab : {size_t(0), size_t(2), size_t(3), size_t(4), size_t(1)}) {
            if (!take(int(tab), scheme)) {
                std::fprintf(stderr, "The %s tab shows nothing to take a picture of.\n",
                             tabs[tab].name);
                return false;
            }
        }
        return true;
    }

private:
    QTabWidget *pages() const { return m_window.findChild<QTabWidget *>(); }

    bool take(int tab, const QString &scheme)
    {
        pages()->setCurrentIndex(tab);
        if (!waitUntil([&] { return isFilled(tabs[size_t(tab)]); }))
            return false;
        if (tabs[size_t(tab)].name == std::string_view("review"))
            choose(content(tabs[size_t(tab)]), shownFile);
        if (tabs[size_t(tab)].name == std::string_view("live"))
            leaveOutStrangers();
        return save(still(),
                    QStringLiteral("%1-%2.png").arg(QLatin1String(tabs[size_t(tab)].name), scheme));
    }

    QAbstractItemView *content(const Tab &tab) const
    {
        return m_window.findChild<QAbstractItemView *>(QLatin1String(tab.content));
    }

    bool isFilled(const Tab &tab) const
    {
        if (!tab.content)
            return true;
        const QAbstractItemView *view = content(tab);
        return view && view->isVisible() && view->model()->rowCount() >= tab.rows;
    }

    static void choose(QAbstractItemView *list, const QString &text)
    {
        const QAbstractItemModel *model = list->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex index = model->index(row, 0);
            if (index.data(Qt::AccessibleTextRole).toString().contains(text))
                list->setCurrentIndex(index);
        }
    }

    /// An agent that really runs here does not belong into the picture.
    void leaveOutStrangers()
    {
        const QAbstractItemModel *agents = content(tabs[1])->model();
        for (int row = 0; row < agents->rowCount(); ++row) {
            const QString folder = agents->index(row, LiveModel::Folder).data().toString();
            if (!folder.startsWith(QDir::homePath()))
                pages()->currentWidget()->findChild<QCheckBox *>()->setChecked(true);
        }
    }

    /// The window when nothing in it moves any more.
    QImage still()
    {
        QImage last;
        waitUntil([&] {
            pass(stillness);
            QImage now = m_window.grab().toImage();
            const bool same = now == last;
            last = std::move(now);
            return same;
        });
        return last;
    }

    bool save(const QImage &picture, const QString &name) const
    {
        QImageWriter writer(m_folder.filePath(name));
        writer.setQuality(0); // as small as it gets; PNG loses nothing
        if (writer.write(inFewColors(picture.convertToFormat(QImage::Format_RGB32))))
            return true;
        std::fprintf(stderr, "%s: %s\n", qPrintable(writer.fileName()),
                     qPrintable(writer.errorString()));
        return false;
    }

    ContentView &m_window;
    QDir m_folder;
};

} // namespace

int main(int argc, char **argv)
{
    prepareEnvironment();
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: plinthar_pictures FOLDER\n", stderr);
        return 2;
    }
    // Not what this desktop looks like, but the same everywhere.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 10));
    QApplication::setCursorFlashTime(0);
    const QPalette light = QApplication::style()->standardPalette();
    QApplication::setPalette(light);

    PlintharApp plinthar;
    plinthar.show();
    Photographer photographer(plinthar.window(), QDir(QString::fromLocal8Bit(argv[1])));
    if (!photographer.open() || !photographer.takeAll(QStringLiteral("light")))
        return 1;
    QApplication::setPalette(darkPalette());
    return photographer.takeAll(QStringLiteral("dark")) ? 0 : 1;
}
