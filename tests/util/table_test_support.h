// Shared pieces of the table file tests: a scratch directory per test, a
// check that every allocated byte is given back, and a table read with its
// messages captured.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/checks.h"
#include "support/run_dc.h"
#include "util/alloc.h"
#include "util/table.h"

class TableTest : public testing::Test {
  protected:
    void SetUp() override {
        dir_ = scratchDir(std::string("table_") +
                          testing::UnitTest::GetInstance()->current_test_info()->name());
        startInUse_ = bytesInUse();
    }
    void TearDown() override {
        EXPECT_EQ(bytesInUse(), startInUse_) << "bytes not given back";
        std::filesystem::remove_all(dir_);
    }
    std::string path(const std::string& name) const { return dir_ + "/" + name; }
    std::string file(const std::string& name, const std::string& text) const {
        writeFile(path(name), text);
        return path(name);
    }

    std::string dir_;
    int64_t startInUse_ = 0;
};

// A table read by rdTable2 with a header list; stderr is captured in err.
struct ReadTable {
    TabData tab{nullptr, 0, 0, nullptr};
    TabHeader* hdr = hdrInit();
    int status = -1;
    std::string err;

    explicit ReadTable(const std::string& path, float nullValue = -9999.0f) {
        err = stderrOf([&] { status = rdTable2(path.c_str(), &tab, hdr, nullValue, 0, 1); });
    }
    ~ReadTable() {
        freeTab(&tab);
        freeHdr(hdr);
    }
    ReadTable(const ReadTable&) = delete;
    ReadTable& operator=(const ReadTable&) = delete;

    float at(int row, int column) const { return tab.values[row * tab.columns + column]; }
    const TabVar& var(int column) const { return tab.vars[column]; }
    // The text a text cell stands for.
    std::string text(int row, int column) const {
        return tab.vars[column].texts[static_cast<int>(at(row, column))];
    }
    std::vector<std::string> texts(int column) const {
        std::vector<std::string> list;
        for (int t = 0; t < tab.vars[column].textCount; t++) {
            list.emplace_back(tab.vars[column].texts[t]);
        }
        return list;
    }
    std::vector<std::string> header() const {
        std::vector<std::string> lines;
        for (const TabHeader* h = hdr; h && h->text; h = h->next) lines.emplace_back(h->text);
        return lines;
    }
};
