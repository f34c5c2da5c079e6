#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <filesystem>
#include <string>

#include "frame/own_module.h"
#include "platform/win32.h"
#include "support/frame_fixtures.h"
#include "support/resource_fixtures.h"

using zeltest::BoxCapture;
using zeltest::LoggedModule;
using zeltest::ModuleInDir;
using zeltest::ResourceData;

namespace {

int CountModules() {
    int count = 0;
    for (int position = ZelGetFirstModule(); position != 0; ZelGetNextModule(&position)) ++count;
    return count;
}

// The extension under which this process looks first: the user's language.
std::string UserExtension() {
    WCHAR extension[MAX_PATH] = {};
    ZelGetResourceExt(static_cast<LANGID>(ZelGetUserLCID()), extension);
    return std::string(extension, extension + 3);
}

TEST(ModuleTable, OwnRecordIsRegisteredAtStart) {
    ZelModuleDef* own = ZelGetModuleDef(0);
    ASSERT_EQ(own, &g_zelOwnModule);
    EXPECT_EQ(std::u16string(own->name), u"ZelModKT.ZelBase");
    EXPECT_EQ(own->flags, 0u);
    EXPECT_EQ(ZelGetSubModuleFunc(own, 0), &ZelBaseSubModuleFunc);
    EXPECT_EQ(ZelGetFirstModule(), 1);
}

TEST(ModuleTable, FullTableRefusesWithoutTouchingTheRecord) {
    const int before = CountModules();
    std::vector<std::unique_ptr<LoggedModule>> fillers;
    for (int i = before; i < ZEL_MODULE_SLOTS; ++i) {
        fillers.push_back(std::make_unique<LoggedModule>(std::vector<LONG>{1}));
        ASSERT_TRUE(ZelInitModule(&fillers.back()->record));
    }
    LoggedModule extra({1}, 1000);
    BoxCapture boxes;
    EXPECT_FALSE(ZelInitModule(&extra.record));
    EXPECT_EQ(extra.record.moduleId, 1000);
    EXPECT_EQ(extra.record.flags, 0u);
    EXPECT_TRUE(extra.log.empty());
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(CountModules(), ZEL_MODULE_SLOTS);
}

TEST(ModuleTable, IdsBelow384AreKeptAndOthersFollowTheSlot) {
    // The own record holds slot 0; four fillers take slots 1 to 4.
    std::vector<std::unique_ptr<LoggedModule>> fillers;
    for (int i = 0; i < 4; ++i) {
        fillers.push_back(std::make_unique<LoggedModule>(std::vector<LONG>{}, 300 + i));
        ASSERT_TRUE(ZelInitModule(&fillers.back()->record));
    }
    LoggedModule fixed({}, 383);
    ASSERT_TRUE(ZelInitModule(&fixed.record));
    EXPECT_EQ(fixed.record.moduleId, 383);
    ZelExitModule(&fixed.record);
    for (LONG asked : {384, 1000}) {
        LoggedModule assigned({}, asked);
        ASSERT_TRUE(ZelInitModule(&assigned.record));
        EXPECT_EQ(assigned.record.moduleId, 389) << asked;
        EXPECT_EQ(ZelGetModuleDef(389), &assigned.record);
    }
}

TEST(ModuleTable, StartAndEndFollowTableOrder) {
    LoggedModule module({1, 2, 3});
    ASSERT_TRUE(ZelInitModule(&module.record));
    ZelExitModule(&module.record);
    EXPECT_EQ(module.log, (std::vector<std::string>{"1:0", "2:0", "3:0", "1:1", "2:1", "3:1"}));
    EXPECT_EQ(ZelGetModuleDef(module.record.moduleId), nullptr);
    ZelExitModule(&module.record);  // no longer registered: nothing happens
    EXPECT_EQ(module.log.size(), 6u);
}

TEST(ModuleTable, FailingRowRollsBackTheRowsBeforeIt) {
    LoggedModule module({1, 2, 3});
    module.failStart = {2};
    module.record.flags = ZEL_MODULE_NO_FAILURE_BOX;
    ZelClearError();
    EXPECT_FALSE(ZelInitModule(&module.record));
    EXPECT_EQ(module.log, (std::vector<std::string>{"1:0", "2:0", "1:1"}));
    EXPECT_TRUE(module.record.flags & ZEL_MODULE_INIT_FAILED);
    EXPECT_EQ(ZelGetModuleDef(module.record.moduleId), nullptr);
    ZelExitModule(&module.record);
    EXPECT_EQ(module.log.size(), 3u);
}

TEST(ModuleTable, FailureBoxShowsTheOwnersTextOfTheThreadsError) {
    BoxCapture boxes;
    LoggedModule module({1});
    module.failStart = {1};
    module.failureMessage = u"the dictionary could not start";
    EXPECT_FALSE(ZelInitModule(&module.record));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, u"the dictionary could not start");
    EXPECT_EQ(boxes.boxes[0].caption, u"Initialization Error");
    EXPECT_EQ(boxes.boxes[0].style, static_cast<UINT>(MB_ICONHAND));

    // With the box turned off the error stays for the caller to read.
    LoggedModule quiet({1});
    quiet.failStart = {1};
    quiet.failureMessage = u"quiet failure";
    quiet.record.flags = ZEL_MODULE_NO_FAILURE_BOX;
    EXPECT_FALSE(ZelInitModule(&quiet.record));
    EXPECT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(ZelGetError(), static_cast<DWORD>(ZEL_ERROR_MESSAGE));
}

TEST(ModuleTable, NoBoxWhenTheErrorHasNoDescription) {
    BoxCapture boxes;
    // No error at all.
    LoggedModule silent({1});
    silent.failStart = {1};
    ZelClearError();
    EXPECT_FALSE(ZelInitModule(&silent.record));
    // A code of the client's own module: the client is not in the table while it starts.
    LoggedModule own({1}, 200);
    own.failStart = {1};
    ZelSetError(ZEL_MAKE_ERROR(200, 1, 5));
    EXPECT_FALSE(ZelInitModule(&own.record));
    EXPECT_TRUE(boxes.boxes.empty());
}

TEST(ModuleTable, RegistrationFromAStartCallbackGetsItsOwnSlot) {
    static LoggedModule* inner;
    LoggedModule innerModule({});
    inner = &innerModule;
    ZelSubModuleEntry rows[] = {{1,
                                 [](ZelModuleDef*, LONG, LONG request, ZelErrorDetail*, DWORD) -> LONG {
                                     if (request == ZEL_SUBMODULE_START) ZelInitModule(&inner->record);
                                     return 0;
                                 }},
                                {-1, nullptr}};
    ZelModuleDef outer{u"Test.Outer", nullptr, nullptr, nullptr, ZEL_MODULE_ID_ASSIGNED, 0, rows};
    ASSERT_TRUE(ZelInitModule(&outer));
    EXPECT_NE(outer.moduleId, innerModule.record.moduleId);
    EXPECT_EQ(ZelGetModuleDef(outer.moduleId), &outer);
    EXPECT_EQ(ZelGetModuleDef(innerModule.record.moduleId), &innerModule.record);
    ZelExitModule(&outer);
}

TEST(ModuleTable, WalkVisitsEveryRecordAndEndsAtZero) {
    LoggedModule a({}), b({}), c({});
    ASSERT_TRUE(ZelInitModule(&a.record));
    ASSERT_TRUE(ZelInitModule(&b.record));
    ASSERT_TRUE(ZelInitModule(&c.record));
    ZelExitModule(&b.record);  // a gap in the table
    std::vector<ZelModuleDef*> seen;
    int position = ZelGetFirstModule();
    while (position != 0) seen.push_back(ZelGetNextModule(&position));
    EXPECT_EQ(seen, (std::vector<ZelModuleDef*>{&g_zelOwnModule, &a.record, &c.record}));
    int last = c.record.moduleId - ZEL_MODULE_ID_ASSIGNED + 1;
    EXPECT_EQ(ZelGetNextModule(&last), &c.record);
    EXPECT_EQ(last, 0);
}

TEST(ModuleTable, SubModuleLookup) {
    LoggedModule module({4, 7, 4});
    EXPECT_NE(ZelGetSubModuleFunc(&module.record, 7), nullptr);
    EXPECT_EQ(ZelGetSubModuleFunc(&module.record, 5), nullptr);
    EXPECT_EQ(ZelGetSubModuleFunc(&module.record, -1), nullptr);
    ZelModuleDef bare{u"Test.Bare", nullptr, nullptr, nullptr, 1, 0, nullptr};
    EXPECT_EQ(ZelGetSubModuleFunc(&bare, 0), nullptr);
    EXPECT_EQ(ZelGetSubModuleFunc(nullptr, 0), nullptr);
    EXPECT_FALSE(ZelInitModule(nullptr));
    ZelExitModule(nullptr);
}

TEST(ModuleTable, ResourceFileIsLoadedAndFreedWithTheModule) {
    ModuleInDir dir;
    dir.WriteResources("shared." + UserExtension(), {{7, u"from the shared file"}});
    LoggedModule module({1});
    module.record.moduleHandle = dir.handle();
    module.record.resourceName = u"shared";
    ASSERT_TRUE(ZelInitModule(&module.record));
    HMODULE resource = module.record.resourceHandle;
    ASSERT_NE(resource, nullptr);
    WCHAR text[64];
    EXPECT_EQ(ZelLoadStringExW(&module.record, 7, text, 64), 20);
    EXPECT_EQ(std::u16string(text), u"from the shared file");
    ZelExitModule(&module.record);
    EXPECT_EQ(module.record.resourceHandle, nullptr);
    EXPECT_EQ(ZelPlatformDataModule(resource), nullptr);  // freed
}

TEST(ModuleTable, NoResourceLookupWhenTheRecordSaysSo) {
    ModuleInDir dir;  // no resource file beside it
    ResourceData preloaded({{1, u"x"}});
    LoggedModule noHandle({}), keep({}), preset({});
    keep.record.moduleHandle = dir.handle();
    keep.record.flags = ZEL_MODULE_KEEP_RESOURCE;
    preset.record.moduleHandle = dir.handle();
    preset.record.resourceHandle = preloaded.handle();
    EXPECT_TRUE(ZelInitModule(&noHandle.record));
    EXPECT_TRUE(ZelInitModule(&keep.record));
    EXPECT_TRUE(ZelInitModule(&preset.record));
    EXPECT_EQ(preset.record.resourceHandle, preloaded.handle());
    ZelExitModule(&keep.record);
    ZelExitModule(&noHandle.record);
}

TEST(ModuleTable, MissingResourceFileFailsWithItsBox) {
    ModuleInDir dir;
    BoxCapture boxes;
    LoggedModule module({1});
    module.record.moduleHandle = dir.handle();
    EXPECT_FALSE(ZelInitModule(&module.record));
    EXPECT_TRUE(module.log.empty());  // sub-modules never start
    EXPECT_EQ(ZelGetError(), static_cast<DWORD>(ZEL_ERROR_RESOURCE_MISSING));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    EXPECT_EQ(boxes.boxes[0].text, u"Resource file for module\n( " + dir.LibraryPath("m.so") + u" )\nis missing or corrupt.");
    EXPECT_EQ(boxes.boxes[0].caption, u"Initialization Error");

    // A name that is found but doesn't load (a directory) fails the same way.
    std::filesystem::create_directory(dir.SystemPath("m." + UserExtension()));
    LoggedModule unloadable({1});
    unloadable.record.moduleHandle = dir.handle();
    unloadable.record.flags = ZEL_MODULE_NO_FAILURE_BOX;
    ZelClearError();
    EXPECT_FALSE(ZelInitModule(&unloadable.record));
    EXPECT_EQ(ZelGetError(), static_cast<DWORD>(ZEL_ERROR_RESOURCE_MISSING));
    EXPECT_EQ(boxes.boxes.size(), 1u);
}

TEST(ModuleTable, RollBackFreesTheResourceFile) {
    ModuleInDir dir;
    dir.WriteResources("m." + UserExtension(), {{1, u"x"}});
    LoggedModule module({1, 2});
    module.failStart = {2};
    module.record.moduleHandle = dir.handle();
    module.record.flags = ZEL_MODULE_NO_FAILURE_BOX;
    EXPECT_FALSE(ZelInitModule(&module.record));
    EXPECT_EQ(module.record.resourceHandle, nullptr);
}

TEST(ModuleTable, OwnRecordLoadedItsResourceFile) {
    // The suite's program is the library's own module, with the library's files beside it.
    ASSERT_NE(g_zelOwnModule.resourceHandle, nullptr);
    WCHAR text[ZEL_ERROR_TEXT_SIZE];
    EXPECT_GT(ZelLoadStringW(g_zelOwnModule.resourceHandle, 278, text, ZEL_ERROR_TEXT_SIZE), 0);
}

}  // namespace
