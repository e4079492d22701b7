// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHeaderView>

/// The column titles of the program's tables: quiet, and in line with the cells below them.
class TableHeader : public QHeaderView {
    Q_OBJECT
public:
    explicit TableHeader(QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void paintSection(QPainter *painter, const QRect &rect, int section) const override;
    QSize sectionSizeFromContents(int section) const override;

private:
    QString title(int section) const;
};
