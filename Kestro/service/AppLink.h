#pragma once

#include <QObject>
#include <QString>

namespace Kestro {

// What the service client asks of the app when an answer says so. The app
// model implements it; the client holds it weakly and skips these effects
// when there is none (as in kestroctl). Called on the GUI thread only.
class AppLink : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // The session ended and could not be renewed.
    virtual void signOutFromService() = 0;
    // Data on the service changed: restart the app's data refresh.
    virtual void restartDataRefresh() = 0;
    // The service sent the user to an app path.
    virtual void openAppPath(const QString& path) = 0;
    // The service sent the user to a path under "/setup".
    virtual void startSetup(const QString& path) = 0;
};

} // namespace Kestro
