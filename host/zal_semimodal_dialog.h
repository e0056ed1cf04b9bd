#pragma once
#include "gapp_export.h"
#include <QDialog>
#include <QEvent>
#include <vector>

namespace Zal::GTools {

// A dialog that stays open beside the main window without blocking it, yet
// is where further dialogs and a forwarded Escape go while it is shown: the
// last one shown and still visible is the current dialog parent
// (getParentWidget). GUI thread only.
class GAPP_EXPORT SemiModalDialog : public QDialog
{
    Q_OBJECT
public:
    explicit SemiModalDialog(QWidget *parent = nullptr);
    ~SemiModalDialog() override;

    // The last shown semi-modal dialog that is still visible, or null.
    static SemiModalDialog *current();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    static std::vector<SemiModalDialog *> _shown;
};

// Asks the main window to show a semi-modal dialog; posted by code that may
// not show it itself (a worker thread). The main window emits
// dialogShowSignal with the dialog. The event does not own the dialog.
class GAPP_EXPORT DialogShowEvent : public QEvent
{
public:
    explicit DialogShowEvent(SemiModalDialog *dialog);
    ~DialogShowEvent() override;

    SemiModalDialog *getDialog() const { return _dialog; }

    static QEvent::Type eventType();

private:
    SemiModalDialog *_dialog;
};

} // namespace Zal::GTools
