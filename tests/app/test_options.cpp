// SPDX-License-Identifier: GPL-3.0-or-later
// The Options dialog: its comments, the max-rows check, the beep box, and
// OK / Cancel through the settings file, with and without the policy that
// forbids saving settings.
#include "engine/document/document.h"
#include "gui/shell/optionsdialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace kel;

namespace {

template<typename T>
T *child(const QWidget &parent, const char *name)
{
    T *w = parent.findChild<T *>(QString::fromUtf8(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}

class OptionsTest : public ::testing::Test
{
protected:
    SettingsLocation location() const
    {
        SettingsLocation l;
        l.file = mDir.filePath(QStringLiteral("KEL Viewer.ini"));
        l.policyFile = mDir.filePath(QStringLiteral("policy.ini"));
        return l;
    }
    void forbidSaving()
    {
        QSettings policy(location().policyFile, QSettings::IniFormat);
        policy.setValue(QStringLiteral("Explorer/NoSaveSettings"), QStringLiteral("dword:00000001"));
    }

    // Runs the dialog modally as the menu command does; `drive` works the
    // controls of the open dialog and ends it.
    bool runWith(SettingsStore &store, UserOptions &options, std::function<void(OptionsDialog &)> drive)
    {
        QTimer::singleShot(0, [drive] {
            auto *dialog = qobject_cast<OptionsDialog *>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            drive(*dialog);
        });
        return runOptionsDialog(nullptr, false, options, store, nullptr);
    }

    QTemporaryDir mDir;
};

UserOptions changedOptions()
{
    UserOptions o;
    o.navigatorRemindToClickShow = false;
    o.navigatorAddBeepToReminder = false;
    o.overviewGroupLines = false;
    o.overviewRowOrder = 2;
    o.overviewMaxRows = 100000;
    o.graphValueOrderReversed = true;
    o.graphCopySaveOpaque = true;
    o.graphCopySaveWhiteSpace = true;
    o.graphCopyToMsOffice = false;
    o.graphByCategoryUseShortCategoryNames = false;
    o.graphLegends = 0;
    o.graphCopyFormat = 1;
    return o;
}

void setControls(OptionsDialog &d, const UserOptions &o)
{
    child<QCheckBox>(d, "chkNavigatorRemindToClickShow")->setChecked(o.navigatorRemindToClickShow);
    child<QCheckBox>(d, "chkOverviewBlockLines")->setChecked(o.overviewGroupLines);
    auto *rowOrder = child<QComboBox>(d, "cboOverviewRowOrder");
    rowOrder->setCurrentIndex(rowOrder->findData(o.overviewRowOrder));
    child<QLineEdit>(d, "txtOverviewMaxRows")->setText(QString::number(o.overviewMaxRows));
    child<QCheckBox>(d, "chkGraphValueOrderReversed")->setChecked(o.graphValueOrderReversed);
    child<QCheckBox>(d, "chkGraphCopySaveOpaque")->setChecked(o.graphCopySaveOpaque);
    child<QCheckBox>(d, "chkGraphCopySaveWhiteSpace")->setChecked(o.graphCopySaveWhiteSpace);
    child<QCheckBox>(d, "chkGraphByCategoryUseShortCategoryNames")
        ->setChecked(o.graphByCategoryUseShortCategoryNames);
    auto *legends = child<QComboBox>(d, "cboGraphLegends");
    legends->setCurrentIndex(legends->findData(o.graphLegends));
    auto *format = child<QComboBox>(d, "cboGraphCopyFormat");
    format->setCurrentIndex(format->findData(o.graphCopyFormat));
}

} // namespace

TEST(OptionsTexts, RowOrderLockAndMaxRows)
{
    // Only a locked row order changes the comment; a threshold alone locks nothing.
    Document doc;
    doc.properties.rowOrder = -1;
    doc.properties.rowOrderThreshold = 25;
    EXPECT_EQ(rowOrderComment(true, &doc), rowOrderComment(true, nullptr));
    doc.properties.rowOrder = 1;
    EXPECT_TRUE(rowOrderComment(false, &doc).contains(QStringLiteral("at least 25")));
    doc.properties.rowOrderThreshold = -1;
    doc.properties.rowOrder = 7;
    EXPECT_TRUE(rowOrderComment(false, &doc).endsWith(QStringLiteral("since it is locked to use an undefined row order.")));

    const struct {
        const char *text;
        qint32 expected; // 0 = refused
    } cases[] = {{"300", 300}, {" 1 ", 1}, {"100000", 100000}, {"2147483647", 2147483647}, {"0", 0}, {"-5", 0},
                 {"+5", 0},    {"abc", 0},  {"12a", 0},         {"", 0},                   {"1 0", 0}, {"2147483648", 0},
                 {"1.5", 0},   {"99999999999", 0}};
    for (const auto &c : cases)
        EXPECT_EQ(parseMaxRows(QString::fromUtf8(c.text)).value_or(0), c.expected) << c.text;
}

TEST_F(OptionsTest, ControlsShowTheSettingsAndTheBeepFollowsTheReminder)
{
    UserOptions o;
    o.navigatorAddBeepToReminder = true;
    o.graphLegends = 42; // none of the list's values
    o.graphCopyToMsOffice = true;
    OptionsDialog d(true, o, nullptr, false);
    auto *remind = child<QCheckBox>(d, "chkNavigatorRemindToClickShow");
    auto *beep = child<QCheckBox>(d, "chkNavigatorAddBeepToReminder");
    EXPECT_TRUE(beep->isEnabled() && beep->isChecked());
    remind->setChecked(false);
    EXPECT_FALSE(beep->isEnabled());
    EXPECT_FALSE(beep->isChecked());
    remind->setChecked(true);
    EXPECT_TRUE(beep->isEnabled());
    EXPECT_FALSE(beep->isChecked()); // cleared, not restored

    // No presentation program here: the box is off whatever was stored.
    auto *office = child<QCheckBox>(d, "chkGraphCopyToMsOffice");
    EXPECT_FALSE(office->isEnabled());
    EXPECT_FALSE(office->isChecked());
    EXPECT_EQ(child<QComboBox>(d, "cboGraphLegends")->currentIndex(), -1);
    EXPECT_EQ(child<QComboBox>(d, "cboGraphCopyFormat")->currentText(), QStringLiteral("Bitmap"));
    // An odd stored value survives OK untouched.
    EXPECT_EQ(d.options().graphLegends, 42);
}

TEST_F(OptionsTest, MaxRowsRefusalKeepsTheFocusInTheBox)
{
    OptionsDialog d(false, UserOptions(), nullptr, false);
    d.show();
    QApplication::setActiveWindow(&d);
    auto *box = child<QLineEdit>(d, "txtOverviewMaxRows");
    auto *rowOrder = child<QComboBox>(d, "cboOverviewRowOrder");
    for (const char *bad : {"0", "x", ""}) {
        d.tabs()->setCurrentIndex(OptionsDialog::OverviewTab);
        box->setFocus();
        box->setText(QString::fromUtf8(bad));
        rowOrder->setFocus(Qt::TabFocusReason);
        QTest::qWait(20);
        EXPECT_TRUE(box->hasFocus()) << bad;
        EXPECT_EQ(box->selectedText(), box->text()) << bad;
        // Enter on OK is refused too, even from another tab.
        d.tabs()->setCurrentIndex(OptionsDialog::GraphsTab);
        d.accept();
        EXPECT_TRUE(d.isVisible()) << bad;
        EXPECT_EQ(d.tabs()->currentIndex(), int(OptionsDialog::OverviewTab)) << bad;
    }
    box->setText(QStringLiteral("100000"));
    rowOrder->setFocus(Qt::TabFocusReason);
    QTest::qWait(20);
    EXPECT_TRUE(rowOrder->hasFocus());
    d.accept();
    EXPECT_EQ(d.result(), int(QDialog::Accepted));
    EXPECT_EQ(d.options().overviewMaxRows, 100000);
}

TEST_F(OptionsTest, OkWritesAllTwelveValuesAndCancelNothing)
{
    const UserOptions wanted = changedOptions();
    {
        SettingsStore store(location());
        UserOptions options;
        EXPECT_FALSE(runWith(store, options, [&](OptionsDialog &d) {
            setControls(d, wanted);
            child<QPushButton>(d, "cmdCancel")->click();
        }));
        EXPECT_EQ(options, UserOptions());
        EXPECT_FALSE(store.keyExists(QStringLiteral("Settings")));

        EXPECT_TRUE(runWith(store, options, [&](OptionsDialog &d) {
            setControls(d, wanted);
            child<QPushButton>(d, "cmdOK")->click();
        }));
        EXPECT_EQ(options, wanted);
        EXPECT_EQ(store.valueNames(QStringLiteral("Settings")).size(), 12);
    }
    // A new run reads back what OK wrote.
    SettingsStore reopened(location());
    EXPECT_EQ(reopened.readSettings(), wanted);
}

TEST_F(OptionsTest, NoSaveSettingsKeepsTheFileButTheRunUsesTheValues)
{
    forbidSaving();
    SettingsStore store(location());
    ASSERT_TRUE(store.policies().noSaveSettings);
    UserOptions options;
    const UserOptions wanted = changedOptions();
    EXPECT_TRUE(runWith(store, options, [&](OptionsDialog &d) {
        setControls(d, wanted);
        child<QPushButton>(d, "cmdOK")->click();
    }));
    EXPECT_EQ(options, wanted); // in effect for this run
    EXPECT_FALSE(store.keyExists(QStringLiteral("Settings")));
    SettingsStore reopened(location());
    EXPECT_EQ(reopened.readSettings(), UserOptions());
}
