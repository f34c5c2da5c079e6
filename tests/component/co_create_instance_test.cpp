// ZelCoCreateInstance on real component libraries, loaded by path, with the library list and
// its users' count.
#include <zel/component.h>
#include <zel/paths.h>

#include <gtest/gtest.h>

#include <string>

#include "component/library_cache.h"
#include "platform/win32.h"
#include "libraries/test_component.h"

namespace {

const std::string kCounter = ZEL_TEST_COMPONENT_COUNTER;    // with DllCanUnloadNow
const std::string kResident = ZEL_TEST_COMPONENT_RESIDENT;  // without it
const std::string kPlain = ZEL_TEST_COMPONENT_PLAIN;        // no DllGetClassObject

// A system path in the library's Windows form.
std::u16string WindowsPath(const std::string& path) {
    std::u16string result(path.begin(), path.end());
    for (char16_t& c : result)
        if (c == u'/') c = u'\\';
    return result;
}

bool IsLoaded(const std::string& path) { return GetModuleHandleW(WindowsPath(path).c_str()) != nullptr; }

// A probe of a loaded library; -1 when the library is not loaded.
int Probe(const std::string& path, const char* name) {
    HMODULE module = GetModuleHandleW(WindowsPath(path).c_str());
    if (!module) return -1;
    auto probe = reinterpret_cast<TestCountProbe>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
    return probe ? probe() : -1;
}

HRESULT Create(const std::u16string& path, IZelTestValue** value, REFCLSID rclsid = CLSID_ZelTestValue,
               REFIID riid = IID_IZelTestValue, IUnknown* outer = nullptr) {
    return ZelCoCreateInstance(path.c_str(), rclsid, outer, CLSCTX_INPROC_SERVER, riid, reinterpret_cast<void**>(value));
}

// An outer object for a factory that refuses aggregation, which never calls it.
struct StackUnknown final : IUnknown {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** ppv) override {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

// Every test starts and ends with an empty list, no users and no library of this suite loaded.
class CoCreate : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }
    static void Reset() {
        ZelComLibraries().initializeCount = 1;
        ZelCoUninitialize();
        ASSERT_TRUE(ZelComLibraries().records.empty());
        ASSERT_FALSE(IsLoaded(kCounter));
        ASSERT_FALSE(IsLoaded(kResident));
    }
    static const std::vector<ZelComLibraryRecord>& Records() { return ZelComLibraries().records; }
};

TEST_F(CoCreate, SamePathLoadsOnceAndServesEveryClassFromTheFirstFactory) {
    IZelTestValue* first = nullptr;
    IZelTestValue* second = nullptr;
    ASSERT_EQ(Create(WindowsPath(kCounter), &first), S_OK);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->Value(), 1);
    // The library does not know this class, but the record's factory answers for the path.
    ASSERT_EQ(Create(WindowsPath(kCounter), &second, CLSID_ZelTestNobody), S_OK);
    EXPECT_EQ(second->Value(), 1);

    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_CLASS_OBJECT_CALLS), 1);
    ASSERT_EQ(Records().size(), 1u);
    EXPECT_EQ(std::u16string(Records()[0].path), WindowsPath(kCounter));
    EXPECT_EQ(Records()[0].classId, CLSID_ZelTestValue);
    // Each use gave the factory's reference back: the record holds none.
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_FACTORY_REFERENCES), 0);
    first->Release();
    second->Release();
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_LIVE_OBJECTS), 0);
}

TEST_F(CoCreate, MacroPathsLoadAnewAndRecordTheExpandedPath) {
    const std::u16string file = WindowsPath(kCounter);
    const std::u16string directory = file.substr(0, file.rfind(u'\\'));
    ASSERT_TRUE(ZelRegisterPath(u"ComTestLibs", directory.c_str()));
    const std::u16string macro = u"${ComTestLibs}" + file.substr(file.rfind(u'\\'));

    IZelTestValue* value = nullptr;
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(Create(macro, &value), S_OK);
        value->Release();
    }
    ASSERT_EQ(Records().size(), 2u);
    EXPECT_EQ(std::u16string(Records()[0].path), file);
    EXPECT_EQ(std::u16string(Records()[1].path), file);
    EXPECT_NE(Records()[0].module, nullptr);
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_CLASS_OBJECT_CALLS), 2);

    // The expanded path itself finds the first record.
    ASSERT_EQ(Create(file, &value), S_OK);
    value->Release();
    EXPECT_EQ(Records().size(), 2u);
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_CLASS_OBJECT_CALLS), 2);

    // Both loads are given back when the last user goes.
    ZelCoInitialize(nullptr);
    ZelCoUninitialize();
    EXPECT_TRUE(Records().empty());
    EXPECT_FALSE(IsLoaded(kCounter));
    ZelUnregisterPath(u"ComTestLibs");
}

TEST_F(CoCreate, PathsCompareExactlyAndWithCase) {
    IZelTestValue* value = nullptr;
    ASSERT_EQ(Create(WindowsPath(kCounter), &value), S_OK);
    value->Release();
    // The system's form of the same file is another path to the list, and loads once more.
    ASSERT_EQ(Create(std::u16string(kCounter.begin(), kCounter.end()), &value), S_OK);
    value->Release();
    EXPECT_EQ(Records().size(), 2u);
}

TEST_F(CoCreate, UninitializeSweepsThenTheLastUserFreesEverything) {
    IZelTestValue* held = nullptr;
    IZelTestValue* resident = nullptr;
    ASSERT_EQ(Create(WindowsPath(kCounter), &held), S_OK);
    ASSERT_EQ(Create(WindowsPath(kResident), &resident), S_OK);
    EXPECT_EQ(resident->Value(), 2);
    resident->Release();

    EXPECT_EQ(ZelCoInitialize(nullptr), S_OK);
    ZelCoInitialize(nullptr);
    // A live object keeps the counter library; the resident one has no say and stays.
    ZelCoUninitialize();
    EXPECT_EQ(ZelComLibraries().initializeCount, 1);
    EXPECT_EQ(Records().size(), 2u);
    held->Release();
    // The last user frees both without asking.
    EXPECT_EQ(ZelCoUninitialize(), S_OK);
    EXPECT_EQ(ZelComLibraries().initializeCount, 0);
    EXPECT_TRUE(Records().empty());
    EXPECT_FALSE(IsLoaded(kCounter));
    EXPECT_FALSE(IsLoaded(kResident));
}

TEST_F(CoCreate, SweepFreesLibrariesThatAgreeAndKeepsTheOrder) {
    IZelTestValue* value = nullptr;
    ASSERT_EQ(Create(WindowsPath(kCounter), &value), S_OK);
    value->Release();
    ASSERT_EQ(Create(WindowsPath(kResident), &value), S_OK);
    value->Release();

    // Without ZelCoInitialize the count is not 1, so this sweeps, and falls to -1.
    ZelCoUninitialize();
    EXPECT_EQ(ZelComLibraries().initializeCount, -1);
    ASSERT_EQ(Records().size(), 1u);
    EXPECT_EQ(std::u16string(Records()[0].path), WindowsPath(kResident));
    EXPECT_FALSE(IsLoaded(kCounter));
    EXPECT_TRUE(IsLoaded(kResident));
}

TEST_F(CoCreate, NoFactoryGivesFailAndLeavesNothingLoaded) {
    IZelTestValue* untouched = reinterpret_cast<IZelTestValue*>(&untouched);
    const IZelTestValue* const sentinel = untouched;

    EXPECT_EQ(Create(u"\\no\\such\\library.so", &untouched), E_FAIL);
    EXPECT_EQ(Create(u"", &untouched), E_FAIL);
    EXPECT_EQ(ZelCoCreateInstance(nullptr, CLSID_ZelTestValue, nullptr, 0, IID_IZelTestValue,
                                  reinterpret_cast<void**>(&untouched)),
              E_FAIL);
    EXPECT_EQ(Create(WindowsPath(kPlain), &untouched), E_FAIL);
    EXPECT_FALSE(IsLoaded(kPlain));
    // The library knows no such class, gives no factory, and is freed again at once.
    EXPECT_EQ(Create(WindowsPath(kCounter), &untouched, CLSID_ZelTestNobody), E_FAIL);
    EXPECT_FALSE(IsLoaded(kCounter));

    EXPECT_EQ(untouched, sentinel);
    EXPECT_TRUE(Records().empty());
}

TEST_F(CoCreate, FactoryFailuresPassThroughAndKeepTheRecord) {
    IZelTestValue* value = nullptr;
    EXPECT_EQ(Create(WindowsPath(kCounter), &value, CLSID_ZelTestValue, IID_IClassFactory), E_NOINTERFACE);
    EXPECT_EQ(value, nullptr);
    StackUnknown outer;
    EXPECT_EQ(Create(WindowsPath(kCounter), &value, CLSID_ZelTestValue, IID_IUnknown, &outer),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(Records().size(), 1u);
    EXPECT_TRUE(IsLoaded(kCounter));
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_FACTORY_REFERENCES), 0);
    EXPECT_EQ(Probe(kCounter, ZEL_TEST_PROBE_LIVE_OBJECTS), 0);
}

}  // namespace
