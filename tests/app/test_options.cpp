// SPDX-License-Identifier: GPL-3.0-or-later
// The Options dialog: the max-rows check, the beep box, and OK / Cancel
// through the settings file, with and without the policy that forbids saving.
#include "gui/shell/optionsdialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
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
        return {.file = mDir.filePath(QStringLiteral("KEL Viewer.ini")), .policyFile = mDir.filePath(QStringLiteral("p.ini"))};
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
    o.navigatorAddBeepToReminder = o.overviewGroupLines = o.graphCopyToMsOffice = false;
    o.graphByCategoryUseShortCategoryNames = false;
    o.graphValueOrderReversed = o.graphCopySaveOpaque = o.graphCopySaveWhiteSpace = true;
    o.overviewRowOrder = 2;
    o.overviewMaxRows = 100000;
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

TEST(OptionsTexts, MaxRowsTakesOnlyPositiveWholeNumbers)
{
    const std::pair<const char *, qint32> cases[] = { // 0 = refused
        {"300", 300}, {" 1 ", 1},   {"2147483647", 2147483647}, {"0", 0},    {"-5", 0},  {"+5", 0},
        {"12a", 0},   {"", 0},      {"1 0", 0},                 {"2147483648", 0},       {"1.5", 0}};
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(parseMaxRows(QString::fromUtf8(text)).value_or(0), expected) << text;
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
    EXPECT_FALSE(beep->isEnabled() || beep->isChecked());
    remind->setChecked(true);
    EXPECT_TRUE(beep->isEnabled());
    EXPECT_FALSE(beep->isChecked()); // cleared, not restored

    // No presentation program here: the box is off whatever was stored.
    auto *office = child<QCheckBox>(d, "chkGraphCopyToMsOffice");
    EXPECT_FALSE(office->isEnabled() || office->isChecked());
    // An odd stored value survives OK untouched.
    EXPECT_EQ(d.options().graphLegends, 42);
}

// A refused number keeps the dialog open on its tab, even when OK is
// pressed from another one.
TEST_F(OptionsTest, MaxRowsRefusalKeepsTheDialogOpen)
{
    OptionsDialog d(false, UserOptions(), nullptr, false);
    d.show();
    auto *box = child<QLineEdit>(d, "txtOverviewMaxRows");
    for (const char *bad : {"0", ""}) {
        box->setText(QString::fromUtf8(bad));
        d.tabs()->setCurrentIndex(OptionsDialog::GraphsTab);
        d.accept();
        EXPECT_TRUE(d.isVisible()) << bad;
        EXPECT_EQ(d.tabs()->currentIndex(), int(OptionsDialog::OverviewTab)) << bad;
    }
    box->setText(QStringLiteral("100000"));
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
    QSettings(location().policyFile, QSettings::IniFormat).setValue(QStringLiteral("Explorer/NoSaveSettings"), 1);
    SettingsStore store(location());
    UserOptions options;
    const UserOptions wanted = changedOptions();
    EXPECT_TRUE(runWith(store, options, [&](OptionsDialog &d) {
        setControls(d, wanted);
        child<QPushButton>(d, "cmdOK")->click();
    }));
    EXPECT_EQ(options, wanted); // in effect for this run
    EXPECT_EQ(SettingsStore(location()).readSettings(), UserOptions());
}
