// Module records and message capture for the tests of the module frame.
#ifndef ZEL_TESTS_FRAME_FIXTURES_H
#define ZEL_TESTS_FRAME_FIXTURES_H

#include <zel/frame.h>
#include <zel/host.h>

#include <string>
#include <vector>

namespace zeltest {

// Captures the message boxes shown while it lives.
class BoxCapture {
public:
    struct Box {
        std::u16string text;
        std::u16string caption;
        UINT style;
    };
    BoxCapture();
    ~BoxCapture();
    std::vector<Box> boxes;
};

// A module record with a sub-module table whose callbacks log each request as "id:request" and
// fail the start of the rows named in failStart.
class LoggedModule {
public:
    explicit LoggedModule(std::vector<LONG> rowIds, LONG moduleId = ZEL_MODULE_ID_ASSIGNED);
    ~LoggedModule();
    LoggedModule(const LoggedModule&) = delete;
    LoggedModule& operator=(const LoggedModule&) = delete;

    ZelModuleDef record{};
    std::vector<std::string> log;
    std::vector<LONG> failStart;
    // What a start failure leaves as the thread's error before it returns -1; 0 sets nothing.
    std::u16string failureMessage;
    // The text a describe request writes.
    std::u16string description = u"described";
    LONG describeResult = 0;

private:
    static LONG Callback(ZelModuleDef* module, LONG id, LONG request, ZelErrorDetail* detail, DWORD reserved);
    std::vector<ZelSubModuleEntry> rows_;
};

}  // namespace zeltest

#endif  // ZEL_TESTS_FRAME_FIXTURES_H
