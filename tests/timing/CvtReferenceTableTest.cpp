// Every field of the record against data/cvt_reference.tsv, which cvt_reference.py works out
// from the formulas on its own. Doubles must match bit for bit (NaN matches NaN).
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cctype>
#include <cmath>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

const std::string kTablePath = VESK_SOURCE_DIR "/tests/timing/data/cvt_reference.tsv";

struct Row {
    std::vector<std::string> names;
    std::vector<std::string> cells;
    const std::string& at(const std::string& name) const {
        for (size_t i = 0; i < names.size(); ++i) {
            if (names[i] == name) return cells.at(i);
        }
        static const std::string missing = "<missing column>";
        ADD_FAILURE() << "no column " << name;
        return missing;
    }
    uint32_t u32(const std::string& name) const { return std::stoul(at(name)); }
    double real(const std::string& name) const { return strtod(at(name).c_str(), nullptr); }
};

void PrintTo(const Row& r, std::ostream* os) {
    *os << r.at("mode") << " " << r.at("hPixels") << "x" << r.at("vLines") << "@"
        << r.at("refreshRate");
}

std::vector<std::string> splitTabs(const std::string& line) {
    std::vector<std::string> cells;
    std::string cell;
    std::istringstream in(line);
    while (std::getline(in, cell, '\t')) cells.push_back(cell);
    if (!line.empty() && line.back() == '\t') cells.push_back("");
    return cells;
}

std::vector<Row> loadTable() {
    std::vector<Row> rows;
    std::ifstream in(kTablePath);
    std::string line;
    if (!std::getline(in, line)) return rows;
    auto names = splitTabs(line);
    while (std::getline(in, line)) rows.push_back({names, splitTabs(line)});
    return rows;
}

std::string rowName(const ::testing::TestParamInfo<Row>& info) {
    const Row& r = info.param;
    std::string name = std::to_string(info.index) + "_" + r.at("mode") + "_" + r.at("hPixels") +
                       "x" + r.at("vLines") + "_" + r.at("refreshRate");
    if (r.at("margins") == "1") name += "_margins";
    if (r.at("interlaced") == "1") name += "_interlaced";
    if (r.at("videoOptimized") == "1") name += "_video";
    for (char& c : name) {
        if (!isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

void expectSameDouble(double expected, double actual, const char* field) {
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(actual)) << field << " = " << actual;
    } else {
        EXPECT_EQ(expected, actual) << field;
    }
}

class CvtReferenceTableTest : public RootTest, public ::testing::WithParamInterface<Row> {};

TEST_P(CvtReferenceTableTest, EveryFieldMatchesTheReference) {
    const Row& r = GetParam();
    VideoTimingCaculator calculator;
    calculator.calculateCvt(r.u32("hPixels"), r.u32("vLines"), r.u32("refreshRate"),
                            r.u32("bitsPerComponent"), r.real("componentsPerPixel"), r.at("mode"),
                            r.at("margins") == "1", r.at("interlaced") == "1",
                            r.at("videoOptimized") == "1");
    timing_t t = calculator.getCvtTiming();
    EXPECT_EQ(r.at("aspectRatio"), calculator.getAspectRatio());
    EXPECT_EQ(r.at("name"), t.name);
    expectSameDouble(r.real("pix_clock"), t.pix_clock, "pix_clock");
    EXPECT_EQ(r.u32("h_total"), t.h_total);
    EXPECT_EQ(r.u32("h_active"), t.h_active);
    EXPECT_EQ(r.u32("h_blank"), t.h_blank);
    EXPECT_EQ(r.u32("h_front_porch"), t.h_front_porch);
    EXPECT_EQ(r.u32("h_sync"), t.h_sync);
    EXPECT_EQ(r.u32("h_back_porch"), t.h_back_porch);
    EXPECT_EQ(std::stoi(r.at("h_sync_polarity")), t.h_sync_polarity);
    expectSameDouble(r.real("h_freq"), t.h_freq, "h_freq");
    expectSameDouble(r.real("h_period"), t.h_period, "h_period");
    EXPECT_EQ(r.u32("v_total"), t.v_total);
    EXPECT_EQ(r.u32("v_active"), t.v_active);
    EXPECT_EQ(r.u32("v_blank"), t.v_blank);
    EXPECT_EQ(r.u32("vblank_duration"), t.vblank_duration);
    EXPECT_EQ(r.u32("v_front_porch"), t.v_front_porch);
    EXPECT_EQ(r.u32("v_sync"), t.v_sync);
    EXPECT_EQ(r.u32("v_back_porch"), t.v_back_porch);
    EXPECT_EQ(std::stoi(r.at("v_sync_polarity")), t.v_sync_polarity);
    expectSameDouble(r.real("v_freq"), t.v_freq, "v_freq");
    expectSameDouble(r.real("v_period"), t.v_period, "v_period");
    EXPECT_EQ(r.u32("peak_bw"), t.peak_bw);
    EXPECT_EQ(r.u32("line_bw"), t.line_bw);
    EXPECT_EQ(r.u32("active_bw"), t.active_bw);
    EXPECT_EQ(r.at("aspect"), t.aspect);
}

INSTANTIATE_TEST_SUITE_P(Reference, CvtReferenceTableTest, ::testing::ValuesIn(loadTable()),
                         rowName);

// The table covers what it must: the three variants and unknown modes, interlace, margins,
// widths that are not whole cells, every aspect-ratio name.
TEST(CvtReferenceTableCoverage, TableCoversVariantsOptionsAndAspectRatios) {
    auto rows = loadTable();
    ASSERT_GE(rows.size(), 20u);
    std::set<std::string> modes, aspects;
    bool interlaced = false, margins = false, oddWidth = false;
    for (const Row& r : rows) {
        modes.insert(r.at("mode"));
        aspects.insert(r.at("aspectRatio"));
        interlaced |= r.at("interlaced") == "1";
        margins |= r.at("margins") == "1";
        oddWidth |= r.u32("hPixels") % 8 != 0;
    }
    for (const char* mode : {"cvt", "cvt_rb", "cvt_rb2", "dmt"}) EXPECT_TRUE(modes.count(mode));
    for (const char* aspect :
         {"4:3", "16:9", "16:10", "5:4", "15:9", "43:18", "64:27", "12:5", "Unknown"}) {
        EXPECT_TRUE(aspects.count(aspect)) << aspect;
    }
    EXPECT_TRUE(interlaced);
    EXPECT_TRUE(margins);
    EXPECT_TRUE(oddWidth);
}

// The committed table is the generator's current output.
TEST(CvtReferenceTableCoverage, CommittedTableIsTheGeneratorsOutput) {
    int status = -1;
    std::string generated =
            runCommand("python3 '" VESK_SOURCE_DIR "/tests/timing/cvt_reference.py'", &status);
    ASSERT_EQ(0, status);
    EXPECT_EQ(readFile(kTablePath), generated);
}

}  // namespace
}  // namespace vesk::test
