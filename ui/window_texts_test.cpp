#include "ui/window_texts.h"

#include <gtest/gtest.h>

#include <vector>

namespace window_texts {
namespace {

TEST(WindowTexts, EveryControlHasAnAccessibleName) {
  for (const ControlText& control : {frmConfig::lstLogfileFormat,
                                     frmConfig::dskLogDir,
                                     frmConfig::dirLogDir,
                                     frmConfig::btnBrowseLogDir,
                                     frmConfig::dskUsageDir,
                                     frmConfig::dirUsageDir,
                                     frmConfig::btnBrowseUsageDir,
                                     frmConfig::txtListSizes,
                                     frmConfig::chkUTC,
                                     frmConfig::chkShowUsernames,
                                     frmConfig::chkCSV,
                                     frmConfig::txtSchedWhen,
                                     frmNewUsageFolder::txtNewUsageFolder,
                                     frmSite::lstSites,
                                     frmSite::txtAdd,
                                     frmOnDemand::lstFromDay,
                                     frmOnDemand::lstToDay,
                                     frmOnDemand::lstMonth,
                                     frmOnDemand::lstYear,
                                     frmOnDemand::txtRepName,
                                     frmFilter::txtFilterName,
                                     frmFilter::lstField,
                                     frmFilter::txtPattern}) {
    EXPECT_NE(control.AccessibleName(), "");
  }
}

TEST(WindowTexts, ANameIsTheCaptionElseTheLabels) {
  EXPECT_EQ(frmConfig::cmdSave.AccessibleName(), "Save + Exit");
  EXPECT_EQ(frmConfig::dirLogDir.AccessibleName(), "Where are the log files?");
  EXPECT_EQ(frmConfig::btnBrowseLogDir.AccessibleName(), "Browse for log files");
  EXPECT_EQ(frmConfig::btnBrowseUsageDir.AccessibleName(), "Browse for usage pages");
  EXPECT_EQ(frmConfig::chkShowUsernames.AccessibleName(), "Show Usernames");
  EXPECT_EQ(frmConfig::chkCSV.AccessibleName(), "Generate CSV files for other analysis");
}

TEST(WindowTexts, RowButtonsNameTheirRule) {
  EXPECT_EQ(frmFilters::EditButton("Robots"), "Edit Robots");
  EXPECT_EQ(frmFilters::DeleteButton("Robots"), "Delete Robots");
}

TEST(WindowTexts, ThePatternsTipEndsWithABlank) {
  EXPECT_EQ(frmFilter::txtPattern.tip, "\"LIKE\" pattern match rule. ");
}

}  // namespace
}  // namespace window_texts
