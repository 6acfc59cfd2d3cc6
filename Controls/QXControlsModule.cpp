#include "Controls/QXControlsModule.h"

#include "Controls/QXQmlModule.h"

QX_QML_MODULE(linkQXControlsModule, Quorvix_Controls, QuorvixControls)
