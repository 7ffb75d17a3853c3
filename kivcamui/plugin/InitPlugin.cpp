#include "InitPlugin.h"

#include <kivui/InitPlugin.h>

#include <QtCore/qresource.h>
#include <QtQml/qqml.h>

void kivcamuiInitPlugin()
{
    // Already registered when the library was loaded; registering again is harmless and keeps
    // the resources available to a host that loads the library statically.
    Q_INIT_RESOURCE(kivcamui);

    qmlRegisterModule("kivcamui", 1, 0);

    kivuiInitPlugin();
}
