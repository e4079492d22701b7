// SPDX-License-Identifier: GPL-3.0-or-later

// Renders the program's icon in one of the sizes in which desktops want it.

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc == 4) {
        QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
        const int size = std::atoi(argv[2]);
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        if (renderer.isValid() && image.save(QString::fromLocal8Bit(argv[3])))
            return 0;
    }
    std::fputs("usage: plinthar_render_icon FILE.svg SIZE FILE.png\n", stderr);
    return 1;
}
