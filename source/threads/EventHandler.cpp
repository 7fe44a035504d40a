// The event object base. Its table of virtual operations goes where the destructor is.
#include "ZVEventHandler.h"

ZVCEventHandler::~ZVCEventHandler() = default;
