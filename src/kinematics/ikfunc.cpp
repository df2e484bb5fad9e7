#include "ikfunc.h"

// Written out: callers built against the header link to it.
Ikfunc::Ikfunc() {}  // NOLINT(modernize-use-equals-default)
