// The headers that applications include must not bring in Xlib, whose macros break other code.
// Nothing runs here: this file compiles or it does not.

#include "ui/button.h"
#include "ui/canvas.h"
#include "ui/capture.h"
#include "ui/colour.h"
#include "ui/connection.h"
#include "ui/fonts.h"
#include "ui/geometry.h"
#include "ui/icon.h"
#include "ui/input.h"
#include "ui/keys.h"
#include "ui/palette.h"
#include "ui/paragraph.h"
#include "ui/single_instance.h"
#include "ui/startup_id.h"
#include "ui/startup_notification.h"
#include "ui/text.h"
#include "ui/text_fit.h"
#include "ui/window.h"

#if defined(None) || defined(Bool) || defined(Status) || defined(Success) || defined(_X11_XLIB_H_)
#error "a public header of the toolkit includes Xlib"
#endif
