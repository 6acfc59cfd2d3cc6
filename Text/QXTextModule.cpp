#include "Text/QXTextModule.h"

#include "Controls/QXQmlModule.h"

QX_QML_MODULE(linkQXTextModule, Quorvix_Text, QuorvixText)
