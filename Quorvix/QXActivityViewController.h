#pragma once

#include "Platform/UIActivityViewController.h"

#include <QtQml/qqml.h>

/// Makes the platform's activity controller known to QML, under its own name.
struct QXActivityViewController
{
    Q_GADGET
    QML_FOREIGN(UIActivityViewController)
    QML_NAMED_ELEMENT(UIActivityViewController)
};
