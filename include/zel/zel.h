// All of ZelBL70KT's interface.
#ifndef ZEL_ZEL_H
#define ZEL_ZEL_H

#include <zel/wintypes.h>
#include <zel/host.h>
#include <zel/frame.h>
#include <zel/strings.h>
#include <zel/codetables.h>
#include <zel/bidi.h>
#include <zel/paths.h>
#include <zel/streams.h>
#include <zel/settings.h>
#include <zel/component.h>
#include <zel/platform.h>

#endif  // ZEL_ZEL_H
