// SPDX-License-Identifier: GPL-3.0-or-later
// The Options dialog: the max-rows check, the beep box, and OK / Cancel
// through the settings file, with and without the policy that forbids saving.
#include "gui/shell/optionsdialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
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
    for (const auto &[name, value] :
         {std::pair{"chkNavigatorRemindToClickShow", o.navigatorRemindToClickShow},
          {"chkOverviewBlockLines", o.overviewGroupLines},
          {"chkGraphValueOrderReversed", o.graphValueOrderReversed},
          {"chkGraphCopySaveOpaque", o.graphCopySaveOpaque},
          {"chkGraphCopySaveWhiteSpace", o.graphCopySaveWhiteSpace},
          {"chkGraphByCategoryUseShortCategoryNames", o.graphByCategoryUseShortCategoryNames}})
        child<QCheckBox>(d, name)->setChecked(value);
    for (const auto &[name, value] : {std::pair{"cboOverviewRowOrder", o.overviewRowOrder},
                                      {"cboGraphLegends", o.graphLegends},
                                      {"cboGraphCopyFormat", o.graphCopyFormat}}) {
        auto *box = child<QComboBox>(d, name);
        box->setCurrentIndex(box->findData(value));
    }
    child<QLineEdit>(d, "txtOverviewMaxRows")->setText(QString::number(o.overviewMaxRows));
}

} // namespace

TEST(OptionsTexts, MaxRowsCommentNamesTheSystemItRunsOn)
{
    const QString system = QStringLiteral("Debian GNU/Linux 12 (bookworm)");
    EXPECT_EQ(maxRowsComment(false, system),
              QStringLiteral("Since this is a Debian GNU/Linux 12 (bookworm) system you can select any number you "
                             "like below, but trying to display a large number of rows will degrade system "
                             "performance."));
    EXPECT_EQ(maxRowsComment(true, system),
              QStringLiteral("Eftersom detta är ett Debian GNU/Linux 12 (bookworm)-system kan du ange vilket tal som "
                             "helst nedan, men om du försöker att visa ett stort antal rader kommer det att påverka "
                             "systemets prestanda negativt."));
#ifndef Q_OS_WIN
    OptionsDialog dialog(false, UserOptions(), nullptr, false);
    const auto *comment = dialog.findChild<QLabel *>(QStringLiteral("lblOverviewMaxRowsComment"));
    ASSERT_NE(comment, nullptr);
    EXPECT_FALSE(comment->text().contains(QStringLiteral("Windows"))) << "not on this system";
#endif
}

TEST(OptionsTexts, MaxRowsTakesOnlyPositiveWholeNumbers)
{
    const std::pair<const char *, qint32> cases[] = {
        // 0 = refused
        {"300", 300}, {" 1 ", 1}, {"2147483647", 2147483647}, {"0", 0},  {"-5", 0}, {"+5", 0}, {"12a", 0},
        {"", 0},      {"1 0", 0}, {"2147483648", 0},          {"1.5", 0}};
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
    EXPECT_TRUE(beep->isEnabled() && !beep->isChecked()); // cleared, not restored

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

// Cancel changes nothing; OK writes all twelve values, which a new run reads
// back, unless the policy forbids saving: then only this run uses them.
TEST_F(OptionsTest, OkWritesAllTwelveValuesAndCancelNothing)
{
    const UserOptions wanted = changedOptions();
    for (bool forbidden : {false, true}) {
        QTemporaryDir dir;
        const SettingsLocation at{.file = dir.filePath(QStringLiteral("o.ini")),
                                  .policyFile = dir.filePath(QStringLiteral("p.ini"))};
        QSettings(at.policyFile, QSettings::IniFormat)
            .setValue(QStringLiteral("Explorer/NoSaveSettings"), int(forbidden));
        SettingsStore store(at);
        UserOptions options;
        for (const char *button : {"cmdCancel", "cmdOK"}) {
            const bool ok = runWith(store, options, [&](OptionsDialog &d) {
                setControls(d, wanted);
                child<QPushButton>(d, button)->click();
            });
            EXPECT_EQ(ok, button[3] == 'O');
            EXPECT_EQ(options, ok ? wanted : UserOptions()) << forbidden;
            EXPECT_EQ(store.keyExists(QStringLiteral("Settings")), ok && !forbidden);
        }
        EXPECT_EQ(store.valueNames(QStringLiteral("Settings")).size(), forbidden ? 0 : 12);
        EXPECT_EQ(SettingsStore(at).readSettings(), forbidden ? UserOptions() : wanted);
    }
}
