#pragma once

#include "model/quota_records.h"
#include "views/models/entry_list.h"

#include <QColor>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace brimwatch::views {

class Theme;

/// A daemon's text as views show it: on one line, and of limited length.
QString shownText(const QString &text);
/// "and 12 more"; empty for none.
QString andMore(qsizetype count);

/// One bucket as its row shows it.
class BucketEntry final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Created by the popover's model.")
    Q_PROPERTY(QString displayName READ displayName NOTIFY changed FINAL)
    Q_PROPERTY(QString windowText READ windowText NOTIFY changed FINAL)
    Q_PROPERTY(QString percentageText READ percentageText NOTIFY changed FINAL)
    Q_PROPERTY(double fill READ fill NOTIFY changed FINAL)
    Q_PROPERTY(QColor color READ color NOTIFY colorChanged FINAL)
    Q_PROPERTY(QColor fillColor READ fillColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(QString resetLine READ resetLine NOTIFY resetLineChanged FINAL)
    Q_PROPERTY(QString timestampText READ timestampText NOTIFY timestampTextChanged FINAL)
    Q_PROPERTY(QString accessibleName READ accessibleName NOTIFY accessibleNameChanged FINAL)

public:
    /// The accessible name begins with `groupName`, the name of the bucket's group.
    BucketEntry(const Theme &theme, QString groupName, QObject *parent = nullptr);

    static const QString &identity(const model::QuotaBucket &bucket) { return bucket.id(); }
    const QString &identity() const { return m_bucket.id(); }
    void update(const model::QuotaBucket &bucket, const QDateTime &now);
    void setTime(const QDateTime &now);

    QString displayName() const { return shownText(m_bucket.displayName); }
    /// "5H WINDOW"; empty without a window.
    QString windowText() const;
    /// "42.5%"
    QString percentageText() const { return m_bucket.formattedPercentage(); }
    /// How much of the bar is full, from 0 to 1.
    double fill() const;
    /// The colour of the bucket's health.
    QColor color() const;
    /// The same for shapes.
    QColor fillColor() const;
    /// "Resets in 2h 3m"
    const QString &resetLine() const { return m_resetLine; }
    /// When it resets; empty when that is unknown.
    const QString &timestampText() const { return m_timestampText; }
    /// The row as one sentence: "Gemini, 5 hour limit, 42.5 percent left, resets in 2h 3m". In
    /// whole minutes, so that a screen reader is not notified each second.
    const QString &accessibleName() const { return m_accessibleName; }

Q_SIGNALS:
    void changed();
    void colorChanged();
    void resetLineChanged();
    void timestampTextChanged();
    void accessibleNameChanged();

private:
    /// What a timestamp depends on beside the bucket.
    struct TimestampFor {
        QDate day;
        int utcOffset = 0; ///< In seconds.
        bool isOver = false; ///< Whether the reset is past.

        bool operator==(const TimestampFor &) const = default;
    };

    const Theme &m_theme;
    QString m_groupName;
    model::QuotaBucket m_bucket;
    QString m_resetLine;
    QString m_timestampText;
    std::optional<TimestampFor> m_timestampFor; ///< Absent when m_timestampText is old.
    QString m_accessibleName;
};

/// A group, and how many of its rows are shown.
struct ShownGroup {
    model::QuotaGroup group;
    qsizetype rows = 0;

    bool operator==(const ShownGroup &) const = default;
};

/// One group as its card shows it.
class GroupEntry final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Created by the popover's model.")
    Q_PROPERTY(QString displayName READ displayName NOTIFY changed FINAL)
    Q_PROPERTY(QString iconName READ iconName NOTIFY changed FINAL)
    Q_PROPERTY(QString countText READ countText NOTIFY changed FINAL)
    Q_PROPERTY(QString descriptionText READ descriptionText NOTIFY changed FINAL)
    Q_PROPERTY(QString moreText READ moreText NOTIFY changed FINAL)
    Q_PROPERTY(QAbstractItemModel *buckets READ buckets CONSTANT FINAL)

public:
    explicit GroupEntry(const Theme &theme, QObject *parent = nullptr);

    static const QString &identity(const ShownGroup &shown) { return shown.group.id(); }
    const QString &identity() const { return m_shown.group.id(); }
    void update(const ShownGroup &shown, const QDateTime &now);
    void setTime(const QDateTime &now);

    QString displayName() const { return shownText(m_shown.group.displayName); }
    QString iconName() const { return m_shown.group.iconName(); }
    /// "1 bucket", "3 buckets"
    QString countText() const;
    /// Empty without one.
    QString descriptionText() const { return shownText(m_shown.group.descriptionText()); }
    /// "and 12 more" of the rows that are not shown; empty when all are.
    QString moreText() const;
    /// The rows, each a BucketEntry in the role "bucket".
    QAbstractItemModel *buckets() { return &m_buckets; }

Q_SIGNALS:
    void changed();

private:
    ShownGroup m_shown;
    EntryList<BucketEntry, model::QuotaBucket> m_buckets;
};

} // namespace brimwatch::views
