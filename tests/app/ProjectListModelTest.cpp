// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProjectListModel.h"

#include "support/GuiTestMain.h"

#include <QAbstractItemModelTester>
#include <QIcon>

namespace {

Project project(const QString &path, bool added = false)
{
    return {path, std::nullopt, added};
}

} // namespace

class ProjectListModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isAModelByQtsRules()
    {
        ProjectListModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setProjects({project(u"/a"_qs), project(u"/b"_qs), project(u"/c"_qs)});
        model.setProjects({project(u"/b"_qs, true), project(u"/x"_qs), project(u"/c"_qs)});
        QCOMPARE(model.rowCount(), 3);
        model.setProjects({});
        QCOMPARE(model.rowCount(), 0);
    }

    void findsARowByItsPath()
    {
        ProjectListModel model;
        model.setProjects({project(u"/a"_qs), project(u"/A"_qs), project(u"/a/"_qs)});
        QCOMPARE(model.indexOf(u"/A"_qs).row(), 1);
        QCOMPARE(model.indexOf(u"/a/"_qs).row(), 2);
        QVERIFY(!model.indexOf(u"/b"_qs).isValid());
        QVERIFY(!model.indexOf(QString()).isValid());
    }

    void aProjectThatWasAddedChangesItsIcon()
    {
        ProjectListModel model;
        model.setProjects({project(u"/a"_qs)});
        const QPersistentModelIndex row = model.index(0, 0);
        QCOMPARE(row.data(Qt::DecorationRole).value<QIcon>().name(), u"folder"_qs);
        model.setProjects({project(u"/a"_qs, true)});
        QCOMPARE(row.data(Qt::DecorationRole).value<QIcon>().name(), u"folder.badge.plus"_qs);
    }
};

PLINTHAR_GUI_TEST_MAIN(ProjectListModelTest)
#include "ProjectListModelTest.moc"
