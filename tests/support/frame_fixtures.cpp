#include "support/frame_fixtures.h"

#include <algorithm>
#include <map>

namespace zeltest {

namespace {
std::map<ZelModuleDef*, LoggedModule*>& Owners() {
    static std::map<ZelModuleDef*, LoggedModule*> owners;
    return owners;
}

int CaptureBox(const WCHAR* text, const WCHAR* caption, UINT style, void* context) {
    static_cast<BoxCapture*>(context)->boxes.push_back({text, caption, style});
    return 1;
}
}  // namespace

BoxCapture::BoxCapture() { ZelSetMessageBoxHandler(CaptureBox, this); }

BoxCapture::~BoxCapture() { ZelSetMessageBoxHandler(nullptr, nullptr); }

LoggedModule::LoggedModule(std::vector<LONG> rowIds, LONG moduleId) {
    for (LONG id : rowIds) rows_.push_back({id, Callback});
    rows_.push_back({-1, nullptr});
    record.name = u"Test.Logged";
    record.moduleId = moduleId;
    record.subModules = rows_.data();
    Owners()[&record] = this;
}

LoggedModule::~LoggedModule() {
    ZelExitModule(&record);
    Owners().erase(&record);
}

LONG LoggedModule::Callback(ZelModuleDef* module, LONG id, LONG request, ZelErrorDetail* detail, DWORD) {
    LoggedModule* self = Owners()[module];
    self->log.push_back(std::to_string(id) + ":" + std::to_string(request));
    if (request == ZEL_SUBMODULE_START &&
        std::find(self->failStart.begin(), self->failStart.end(), id) != self->failStart.end()) {
        if (!self->failureMessage.empty()) ZelSetErrorMesg(self->failureMessage.c_str());
        return -1;
    }
    if (request == ZEL_SUBMODULE_DESCRIBE && detail) {
        size_t n = self->description.copy(detail->text, ZEL_ERROR_TEXT_SIZE - 1);
        detail->text[n] = 0;
        return self->describeResult;
    }
    return 0;
}

}  // namespace zeltest
