#pragma once

#include "TraceRules.h"
#include "shell/KeyedListModel.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// A run's trace as the trace view reads it: the header line, the summary,
// and the rows (steps, and page reads folded into one). The view hands it
// the trace at each reload of the page that holds it; rows are keyed by
// their first step's place in the run, so steps that only accumulate keep
// their rows, and a row the user opened stays open.
class TraceModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    // A Model::RunTrace in a QVariant (a page model's role), or nothing.
    Q_PROPERTY(QVariant trace READ trace WRITE setTrace NOTIFY changed)
    Q_PROPERTY(bool present READ present NOTIFY changed)
    Q_PROPERTY(bool inProgress READ inProgress NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)
    // While in progress what the run does ("Thinking", ...), else the summary.
    Q_PROPERTY(QString headline READ headline NOTIFY changed)
    Q_PROPERTY(int steps READ steps NOTIFY changed)
    // The keyed rows; typed as the plain model so every view module knows it.
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)

public:
    explicit TraceModel(QObject* parent = nullptr);

    QVariant trace() const { return m_value; }
    void setTrace(const QVariant& value);
    bool present() const { return m_present; }
    bool inProgress() const { return m_present && TraceRules::inProgress(m_trace.status); }
    bool failed() const { return m_present && m_trace.status == QLatin1String("failed"); }
    QString headline() const;
    int steps() const;
    KeyedListModel* rows() const;
    QAbstractItemModel* rowsModel() const;

    // A step's input as the row shows it: JSON (pretty-printed) when it
    // reads as an array or object, else the text itself.
    static bool inputIsJson(const QString& input);
    static QString prettyInput(const QString& input);

signals:
    void changed();

public:
    struct KeyedRow {
        QString key;
        TraceRules::Row row;
        bool operator==(const KeyedRow& other) const
        {
            return key == other.key && row.kind == other.row.kind && row.label == other.row.label &&
                   row.icon == other.row.icon && row.steps == other.row.steps;
        }
    };

private:
    QVariant m_value;
    Model::RunTrace m_trace;
    bool m_present = false;
    KeyedList<KeyedRow>* m_rows;
};

} // namespace Kestro
