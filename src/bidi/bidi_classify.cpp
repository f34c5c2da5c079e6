// The class of each character of a line, as the resolution steps or as the white space step
// want it.
#include "bidi/bidi_internal.h"

namespace zelbidi {

void BidiClassify(const WCHAR* text, DWORD count, WORD* classes, ClassMode mode) {
    if (mode == ClassMode::Raw) {
        for (DWORD i = 0; i < count; ++i) classes[i] = ZelClassFromChWS(text[i]);
        return;
    }
    for (DWORD i = 0; i < count; ++i) {
        classes[i] = ZelClassFromChN(text[i]);
        // A full stop right behind a number belongs to it, so a decimal point never separates,
        // and a run of full stops all follow the number.
        if (text[i] == u'.' && i > 0 && (classes[i - 1] == ZelBidiEN || classes[i - 1] == ZelBidiAN))
            classes[i] = classes[i - 1];
    }
}

}  // namespace zelbidi
