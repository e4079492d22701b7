// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ItemPainting.h"

#include "support/GuiTestMain.h"

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>

class ItemPaintingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFrameOfTheFocusIsAroundTheWholeRow()
    {
        QStyleOptionViewItem item = row();
        item.features = QStyleOptionViewItem::HasDisplay;
        const QImage plain = painted(item);
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::red);
        item.icon = QIcon(pixmap);
        item.decorationSize = pixmap.size();
        item.features |= QStyleOptionViewItem::HasDecoration;
        QCOMPARE(painted(item), plain);

        item.state &= ~QStyle::State_HasFocus;
        QVERIFY(painted(item) != plain);
    }

private:
    static QStyleOptionViewItem row()
    {
        QStyleOptionViewItem item;
        item.rect = QRect(0, 0, 200, 40);
        item.palette = QApplication::palette();
        item.text = u"a text"_qs;
        item.state = QStyle::State_Enabled | QStyle::State_Active | QStyle::State_Selected |
                     QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange;
        item.showDecorationSelected = true;
        return item;
    }

    static QImage painted(const QStyleOptionViewItem &item)
    {
        QImage image(item.rect.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        paintItemGround(&painter, item);
        return image;
    }
};

PLINTHAR_GUI_TEST_MAIN(ItemPaintingTest)
#include "ItemPaintingTest.moc"
