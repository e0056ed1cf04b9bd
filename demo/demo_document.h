#pragma once
// The demo's data: one probed point set, with undo through a QUndoStack that
// the library sees as the host's record manager.
#include "zal_record_manager.h"
#include <QObject>
#include <QString>
#include <QUndoStack>
#include <QVector3D>
#include <vector>

namespace Demo {

class Document : public QObject
{
    Q_OBJECT
public:
    static Document &instance();

    const std::vector<QVector3D> &points() const { return _points; }
    const QString &fileName() const { return _file_name; }
    bool isModified() const { return !_undo.isClean(); }
    bool grid() const { return _grid; }
    void setGrid(bool on);
    QUndoStack &undoStack() { return _undo; }

    // Reads "x y z" lines ('#' starts a comment); the replacement is one undo step.
    bool open(const QString &fileName, QString *error);
    bool save(const QString &fileName, QString *error);
    // Moves point i (0-based) by the offset, as one undo step.
    void movePoint(int index, const QVector3D &offset);

    void replacePoints(const std::vector<QVector3D> &points, const QString &fileName);

signals:
    void changed();

private:
    void record(QUndoCommand *step);

    std::vector<QVector3D> _points;
    QString _file_name;
    bool _grid = false;
    QUndoStack _undo;
};

// The library's view of the undo stack.
class RecordManager : public Zal::RecordManagerBase
{
public:
    bool isBusy() const override { return false; }
    void clearHistory() override;
    bool isUndoRecordingOn() const override { return true; }
    void undo() override { Document::instance().undoStack().undo(); }
    void redo() override { Document::instance().undoStack().redo(); }
};

// The one document, for short.
inline Document &doc()
{
    return Document::instance();
}

} // namespace Demo
