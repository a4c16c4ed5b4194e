#include "host/admin/common/progress_bar.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvo::admin {
namespace {

using namespace std::chrono_literals;

TEST(AProgressBar, IsDrawnOverItselfAndGoesAway) {
    std::ostringstream terminal;
    const ProgressBar::Clock::time_point begin{1h};
    {
        ProgressBar bar(terminal, "Loading");
        bar.tell(1, 3, "10000 entries", begin);
        bar.tell(2, 3, "12000 entries", begin + 99ms);
        bar.tell(3, 3, "1 entry", begin + 100ms);
    }
    const std::string first =
        "Loading [" + std::string(9, '#') + std::string(21, '-') + "] 33 %, 10000 entries";
    const std::string last = "Loading [" + std::string(30, '#') + "] 100 %, 1 entry";
    EXPECT_EQ(terminal.str(), "\r" + first + "\r" + last +
                                  std::string(first.size() - last.size(), ' ') + "\r" +
                                  std::string(last.size(), ' ') + "\r");
}

TEST(AProgressBar, IsDrawnAnewWhereSomethingElseWasSaid) {
    std::ostringstream terminal;
    const auto begin = ProgressBar::Clock::now();
    ProgressBar bar(terminal, "Loading");
    bar.tell(1, 0, "1 entry", begin);
    bar.clear();
    terminal << "a line\n";
    bar.tell(2, 0, "2", begin + 100ms);
    const std::string first = "Loading, 1 entry";
    EXPECT_EQ(terminal.str(),
              "\r" + first + "\r" + std::string(first.size(), ' ') + "\ra line\n\rLoading, 2");
}

TEST(AProgressBar, HasNoPartOfWhatNobodyKnows) {
    std::ostringstream terminal;
    {
        ProgressBar bar(terminal, "Loading");
        bar.tell(7, 0, "7 entries");
    }
    EXPECT_TRUE(terminal.str().starts_with("\rLoading, 7 entries\r"));
}

// Otherwise it would go on in the terminal's next line, and never be drawn over itself again.
TEST(AProgressBar, IsNoWiderThanTheTerminal) {
    const auto drawn = [](std::size_t columns, const std::string& what) {
        std::ostringstream terminal;
        ProgressBar bar(terminal, what, columns);
        bar.tell(1, 2, "3702 made, 1 refused");
        return terminal.str();
    };
    EXPECT_EQ(drawn(68, "Loading"), "\rLoading [" + std::string(15, '#') + std::string(15, '-') +
                                        "] 50 %, 3702 made, 1 refused");
    EXPECT_EQ(drawn(48, "Loading"), "\rLoading [#####-----] 50 %, 3702 made, 1 refused");
    EXPECT_EQ(drawn(43, "Loading"), "\rLoading [##---] 50 %, 3702 made, 1 refused");
    EXPECT_EQ(drawn(42, "Loading"), "\rLoading 50 %, 3702 made, 1 refused");
    EXPECT_EQ(drawn(35, "Loading"), "\rLoading 50 %, 3702 made, 1 refused");
    EXPECT_EQ(drawn(34, "Loading"), "\rLoading 50 %, 3702 made, 1 refus…");
    EXPECT_EQ(drawn(10, "日本日本日本"), "\r日本日本…");
}

TEST(AProgressBar, LeavesNoTraceWhereNothingWasTold) {
    std::ostringstream terminal;
    { ProgressBar bar(terminal, "Loading"); }
    EXPECT_EQ(terminal.str(), "");
}

}  // namespace
}  // namespace orvo::admin
