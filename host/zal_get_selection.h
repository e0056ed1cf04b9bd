#pragma once
#include "gapp_export.h"
#include <QString>
#include <vector>

namespace Zal {

// The parser library's question for the selected data of a data type. One
// instance at a time answers it; the newest registration wins and the
// destructor unregisters only itself.
class GAPP_EXPORT GetSelectionInterface
{
public:
    GetSelectionInterface();
    virtual ~GetSelectionInterface();
    virtual std::vector<QString> getSelectedData(const char *typeName) = 0;

    static GetSelectionInterface *getInterface();

private:
    static GetSelectionInterface *_instance;
};

} // namespace Zal
