#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "frame/thread_data.h"
#include "support/frame_fixtures.h"

using zeltest::LoggedModule;

namespace {

class ErrorState : public ::testing::Test {
protected:
    void SetUp() override {
        ZelClearError();
        ZelClearWarning();
    }
    void TearDown() override {
        ZelClearError();
        ZelClearWarning();
    }
};

std::u16string DataText(const ZelErrorDetail& detail, size_t offset = 0) {
    std::u16string text;
    for (size_t at = offset; at + 1 < sizeof detail.data; at += 2) {
        char16_t c;
        memcpy(&c, detail.data + at, 2);
        if (!c) break;
        text += c;
    }
    return text;
}

TEST_F(ErrorState, WarningRingKeepsTheNewestThree) {
    for (DWORD code : {11u, 12u, 13u, 14u}) EXPECT_TRUE(ZelSetWarning(code));
    EXPECT_EQ(ZelGetWarning(0), 12u);
    EXPECT_EQ(ZelGetWarning(0), 12u);  // reading without the flag leaves it
    EXPECT_EQ(ZelGetWarning(1), 12u);
    EXPECT_EQ(ZelGetWarning(1), 13u);
    EXPECT_EQ(ZelGetWarning(1), 14u);
    EXPECT_EQ(ZelGetWarning(1), 0u);
    // The ring wraps around many times without losing its order.
    for (DWORD code = 100; code < 120; ++code) ZelSetWarning(code);
    EXPECT_EQ(ZelGetWarning(1), 117u);
    ZelClearWarning();
    EXPECT_EQ(ZelGetWarning(0), 0u);
}

TEST_F(ErrorState, SetErrorExCopiesDataOnlyWithPointerAndSize) {
    ZelSetErrorEx(5, 1, "abc", 4);
    ZelSetErrorEx(6, 2, nullptr, 10);
    ZelErrorInfo info;
    ZelStoreError(&info);
    EXPECT_EQ(info.code, 6u);
    EXPECT_EQ(info.kind, 2u);
    EXPECT_STREQ(reinterpret_cast<const char*>(info.data), "abc");
    ZelSetErrorEx(7, 3, "zzz", 0);
    ZelSetError(8);
    ZelClearError();
    ZelStoreError(&info);
    EXPECT_EQ(info.code, 0u);
    EXPECT_EQ(info.kind, 0u);
    EXPECT_STREQ(reinterpret_cast<const char*>(info.data), "abc");  // detail stays behind kind 0

    // Data longer than the block is cut at its end.
    std::vector<BYTE> big(5000, 0x5A);
    ZelSetErrorEx(3, 1, big.data(), static_cast<DWORD>(big.size()));
    ZelSetWarningEx(3, 1, big.data(), static_cast<DWORD>(big.size()));
    ZelStoreError(&info);
    EXPECT_EQ(info.data[ZEL_ERROR_DATA_SIZE - 1], 0x5A);
    EXPECT_EQ(ZelGetWarning(1), 3u);
}

TEST_F(ErrorState, StoreAndRestoreBringBackTheWholeBlock) {
    const WCHAR name[] = u"c:\\data\\x.ini";
    ZelSetFileError(4, name);
    ZelSetWarning(21);
    ZelErrorInfo saved;
    ZelStoreError(&saved);
    ZelSetErrorMesg(u"something else");
    ZelSetError(99);
    ZelSetWarningMesg(u"warnings leave the current error alone");
    ZelErrorInfo now;
    ZelStoreError(&now);
    EXPECT_EQ(now.code, 99u);
    ZelSetWarning(22);
    ZelRestoreError(&saved);
    ZelStoreError(&now);
    EXPECT_EQ(memcmp(&now, &saved, sizeof now), 0);
    EXPECT_EQ(ZelGetWarning(1), 21u);  // warnings are not part of the block
    EXPECT_EQ(ZelGetWarning(1), 1u);
    EXPECT_EQ(ZelGetWarning(1), 22u);
}

TEST_F(ErrorState, LongTextsKeepTheirTerminatorInsideTheBlock) {
    std::u16string longText(600, u'가');
    ZelSetErrorMesg(longText.c_str());
    ZelErrorDetail detail;
    EXPECT_FALSE(ZelGetErrorDetail(&detail));  // the formatter answers 1 for a text it made
    EXPECT_EQ(DataText(detail), longText.substr(0, 511));
    // The description of code 1 gives 259 characters of it.
    EXPECT_EQ(std::u16string(detail.text), longText.substr(0, 259));

    std::u16string longName(700, u'n');
    ZelSetFileError(0x80070005, longName.c_str());
    ZelErrorInfo info;
    ZelStoreError(&info);
    DWORD number;
    memcpy(&number, info.data, 4);
    EXPECT_EQ(info.code, 10u);
    EXPECT_EQ(info.kind, 1u);
    EXPECT_EQ(number, 0x80070005u);
    memcpy(&detail.data, info.data, sizeof info.data);
    EXPECT_EQ(DataText(detail, 4), longName.substr(0, 509));

    ZelSetErrorMesg(nullptr);
    EXPECT_EQ(ZelGetError(), 1u);
}

TEST_F(ErrorState, CodesAreRoutedByModuleAndSubModule) {
    LoggedModule module({1, 3}, 5);
    ASSERT_TRUE(ZelInitModule(&module.record));
    module.log.clear();
    module.description = u"sub-module three, number seven";
    ZelSetErrorEx(0x280C07, 9, "raw", 4);
    ZelErrorDetail detail;
    memset(&detail, 0xCD, sizeof detail);
    EXPECT_TRUE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(module.log, (std::vector<std::string>{"3:2"}));
    EXPECT_EQ(detail.code, 0x280C07u);
    EXPECT_EQ(detail.kind, 9u);
    EXPECT_STREQ(reinterpret_cast<const char*>(detail.data), "raw");
    EXPECT_EQ(std::u16string(detail.text), u"sub-module three, number seven");
    EXPECT_EQ(detail.text2[0], 0);
    EXPECT_EQ(detail.extra, 0u);

    // The callback's result decides: anything but 0 reads as "not described".
    module.describeResult = 1;
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    // A sub-module without a row, or a module not in the table, has no description.
    ZelSetError(ZEL_MAKE_ERROR(5, 2, 1));
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(detail.text[0], 0);
    ZelExitModule(&module.record);
    ZelSetError(0x280C07);
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
}

TEST_F(ErrorState, SystemAndRuntimeCodesBelongToTheLibrary) {
    // Module bits that name a registered module are not read when bit 30 or 31 is set.
    LoggedModule module({3}, 5);
    ASSERT_TRUE(ZelInitModule(&module.record));
    module.log.clear();
    ZelSetError(0x40000000u | 0x280C00u | 2u);
    ZelErrorDetail detail;
    ZelGetErrorDetail(&detail);
    EXPECT_TRUE(module.log.empty());
    ZelSetError(0x40000002u);
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    std::string expected = strerror(2);
    EXPECT_EQ(std::u16string(detail.text), std::u16string(expected.begin(), expected.end()));
    ZelSetError(0x80280C07u);
    ZelGetErrorDetail(&detail);
    EXPECT_TRUE(module.log.empty());
}

TEST_F(ErrorState, LibraryCodesWithoutResourceStrings) {
    ZelErrorDetail detail;
    const WCHAR name[] = u"c:\\suite\\m.dll";
    ZelSetErrorEx(9, 1, name, sizeof name);
    EXPECT_FALSE(ZelGetErrorDetail(&detail));  // the formatter answers 1 for code 9
    EXPECT_EQ(std::u16string(detail.text), u"Resource file for module\n( c:\\suite\\m.dll )\nis missing or corrupt.");
    ZelSetErrorEx(9, 0, nullptr, 0);
    ZelGetErrorDetail(&detail);
    EXPECT_EQ(std::u16string(detail.text), u"Resource file is missing or corrupt.");
    ZelSetError(11);
    EXPECT_TRUE(ZelGetErrorDetail(&detail));  // no text, result 0 from the formatter
    EXPECT_EQ(detail.text[0], 0);
    ZelSetErrorEx(1, 3, nullptr, 0);
    EXPECT_TRUE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(detail.text[0], 0);
}

TEST_F(ErrorState, NoErrorLeavesTheCallersRecordUntouched) {
    ZelErrorDetail detail;
    memset(&detail, 0xAB, sizeof detail);
    ZelErrorDetail before = detail;
    EXPECT_FALSE(ZelGetErrorDetail(&detail));
    EXPECT_EQ(memcmp(&detail, &before, sizeof detail), 0);
    EXPECT_FALSE(ZelGetWarningDetail(&detail, 1));
    EXPECT_EQ(memcmp(&detail, &before, sizeof detail), 0);
    EXPECT_FALSE(ZelGetErrorDetail(nullptr));
}

TEST_F(ErrorState, WarningDetailRemovesWhateverTheDescription) {
    ZelSetWarning(ZEL_MAKE_ERROR(300, 1, 1));  // no such module
    ZelSetWarningMesg(u"second");
    ZelErrorDetail detail;
    EXPECT_FALSE(ZelGetWarningDetail(&detail, 1));  // not described, removed all the same
    EXPECT_EQ(ZelGetWarning(0), 1u);
    EXPECT_FALSE(ZelGetWarningDetail(&detail, 0));
    EXPECT_EQ(std::u16string(detail.text), u"second");
    EXPECT_EQ(ZelGetWarning(0), 1u);
    ZelGetWarningDetail(&detail, 1);
    EXPECT_EQ(ZelGetWarning(0), 0u);
}

TEST_F(ErrorState, EachThreadHasItsOwnState) {
    ZelSetError(1234);
    ZelSetWarning(4321);
    std::vector<std::thread> threads;
    std::vector<int> failures(6, 0);
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([t, &failures] {
            if (ZelGetError() != 0 || ZelGetWarning(0) != 0) ++failures[t];
            for (int round = 0; round < 500; ++round) {
                const DWORD code = static_cast<DWORD>(t * 10000 + round + 1);
                ZelSetError(code);
                ZelSetWarning(code);
                std::this_thread::yield();
                if (ZelGetError() != code || ZelGetWarning(1) != code) ++failures[t];
            }
            // Warnings left at the thread's end are freed by its detach.
            ZelSetWarning(1);
            ZelSetWarningMesg(u"left behind");
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(failures, std::vector<int>(6, 0));
    EXPECT_EQ(ZelGetError(), 1234u);
    EXPECT_EQ(ZelGetWarning(1), 4321u);
}

TEST_F(ErrorState, AThreadThatNeverAsksHasNoRecord) {
    ZelThreadData* seen = reinterpret_cast<ZelThreadData*>(1);
    std::thread([&seen] { seen = ZelPeekThreadData(); }).join();
    EXPECT_EQ(seen, nullptr);
    std::thread([&seen] {
        ZelGetError();
        seen = ZelPeekThreadData();
    }).join();
    EXPECT_NE(seen, nullptr);
}

}  // namespace
