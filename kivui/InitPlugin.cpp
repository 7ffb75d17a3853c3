#include "InitPlugin.h"

#include "DialogButtonBoxHelper.h"

#include <QtQml/qqml.h>

void kivuiInitPlugin()
{
    qmlRegisterUncreatableType<DialogButtonBoxHelper>("kivui", 1, 0, "DialogButtonBoxHelper",
        "DialogButtonBoxHelper is only available as an attached property");
}
