// SPDX-License-Identifier: GPL-3.0-or-later
#include "usage/SessionsModel.h"

#include "support/GuiTestMain.h"

#include <QAbstractItemModelTester>

namespace {

SessionRow rowOf(const QString &id)
{
    SessionRow row;
    row.id = id;
    return row;
}

} // namespace

class SessionsModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAModelByQtsRules()
    {
        SessionsModel model(QLocale(QLocale::English, QLocale::UnitedStates));
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setRows({rowOf(u"a"_qs), rowOf(u"b"_qs), rowOf(u"c"_qs)});
        model.setRows({rowOf(u"c"_qs), rowOf(u"x"_qs), rowOf(u"a"_qs)});
        model.setRows({});
        QCOMPARE(model.rowCount(), 0);
    }

    void whatIsNotThereIsNothing()
    {
        SessionsModel model(QLocale(QLocale::English, QLocale::UnitedStates));
        model.setRows({rowOf(u"a"_qs)});
        QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());
        QVERIFY(!model.headerData(-1, Qt::Horizontal, Qt::DisplayRole).isValid());
        QVERIFY(!model.headerData(99, Qt::Horizontal, Qt::DisplayRole).isValid());
        QVERIFY(!model.headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
    }

    void followsItsLocale()
    {
        SessionsModel model(QLocale(QLocale::German, QLocale::Germany));
        SessionRow row = rowOf(u"a"_qs);
        row.input = 1234;
        row.output = 12'345;
        row.cost = 1234.5;
        model.setRows({row});
        const auto text = [&model](int column) { return model.index(0, column).data().toString(); };
        QCOMPARE(text(SessionsModel::Input), u"1.234"_qs);
        QCOMPARE(text(SessionsModel::Output), u"12.3k"_qs);
        QCOMPARE(text(SessionsModel::Cost), u"$1234.50"_qs);
    }
};

PLINTHAR_GUI_TEST_MAIN(SessionsModelTest)
#include "SessionsModelTest.moc"
