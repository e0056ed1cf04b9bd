#include "gapp_safemode.h"
#include "gapp_main_window.h"
#include "gapp_status_mgr.h"
#include "zal_exception.h"

namespace Zal {
namespace GApp {

std::vector<void (*)()> Safemode::_callbacks;
SaveSessionHandler *SaveSessionHandler::ssh = nullptr;
ResolveInterface *ResolveInterface::_instance = nullptr;
bool ResolveInterface::_resolve_items = true;
DropInterface *DropInterface::_instance = nullptr;

void Safemode::registerCallback(void (*callback)())
{
    if (!callback)
        throw ZAL_PROG_ERROR("Zal::GApp::Safemode::registerCallback", QStringLiteral("NULL callback"));
    _callbacks.push_back(callback);
}

void Safemode::restoreSafeCfgItems()
{
    // A copy: a callback may register another one, which then waits for the next start.
    const auto callbacks = _callbacks;
    for (auto cb : callbacks)
        cb();
}

SaveSessionHandler::SaveSessionHandler()
{
    if (ssh)
        throw ZAL_PROG_ERROR("Zal::GApp::SaveSessionHandler::SaveSessionHandler",
                             QStringLiteral("trying to register second save session handler"));
    ssh = this;
}

SaveSessionHandler::~SaveSessionHandler()
{
    if (ssh == this)
        ssh = nullptr;
}

ResolveInterface::ResolveInterface()
{
    if (_instance)
        throw ZAL_PROG_ERROR("Zal::GApp::ResolveInterface::ResolveInterface",
                             QStringLiteral("ResolveInterface is a singleton class"));
    _instance = this;
}

ResolveInterface::~ResolveInterface()
{
    if (_instance == this)
        _instance = nullptr;
}

QString ResolveInterface::resolveParameterString(const QString &params)
{
    if (_instance && _resolve_items)
        return _instance->resolve(params);
    return params;
}

DropInterface::DropInterface(QObject *parent) : QObject(parent)
{
    if (_instance)
        throw ZAL_PROG_ERROR("Zal::GApp::DropInterface::DropInterface",
                             QStringLiteral("Instance exists already"));
    _instance = this;
}

DropInterface::~DropInterface()
{
    if (_instance == this)
        _instance = nullptr;
}

std::vector<QString> GAppGetSelectionInterface::getSelectedData(const char *typeName)
{
    if (!MainWindow::smgr)
        return {};
    return MainWindow::smgr->getSelectedData(typeName);
}

} // namespace GApp
} // namespace Zal
