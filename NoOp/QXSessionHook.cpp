#include "Quorvix/QXSessionHook.h"

void QXSessionHook::install() {}

void QXSessionHook::exchange(Quorvix::ObjectClass &) {}
