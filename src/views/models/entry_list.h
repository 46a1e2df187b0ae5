#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QVariant>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace brimwatch::views {

/// Records as a list model of objects that survive a refresh: the entry of a record that was in the
/// list before is updated, not replaced, so that its view and the scroll position stay. Records
/// with the same identity get their entries in order.
template <typename Entry, typename Record> class EntryList final : public QAbstractListModel {
public:
    using Make = std::function<Entry *()>;

    /// `role` is the name of the entry in a delegate; `make` creates an entry, which the list owns.
    EntryList(QByteArray role, Make make)
        : m_role(std::move(role))
        , m_make(std::move(make))
    {
    }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::UserRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
            return {};
        return QVariant::fromValue(m_entries.at(static_cast<std::size_t>(index.row())));
    }

    QHash<int, QByteArray> roleNames() const override { return {{Qt::UserRole, m_role}}; }

    void update(const QList<Record> &records, const QDateTime &now)
    {
        for (qsizetype i = 0; i < records.size(); ++i) {
            place(static_cast<std::size_t>(i), Entry::identity(records.at(i)));
            m_entries[static_cast<std::size_t>(i)]->update(records.at(i), now);
        }
        drop(static_cast<std::size_t>(records.size()));
    }

    void setTime(const QDateTime &now)
    {
        for (Entry *entry : m_entries)
            entry->setTime(now);
    }

private:
    /// Inserts or moves the entry with that identity to `index`. Those before it are in place
    /// already.
    void place(std::size_t index, const QString &identity)
    {
        std::size_t found = index;
        while (found < m_entries.size() && m_entries[found]->identity() != identity)
            ++found;
        const int to = static_cast<int>(index);
        if (found == m_entries.size()) {
            Entry *entry = m_make();
            entry->setParent(this);
            beginInsertRows({}, to, to);
            m_entries.insert(m_entries.begin() + to, entry);
            endInsertRows();
        } else if (found != index) {
            const int from = static_cast<int>(found);
            beginMoveRows({}, from, from, {}, to);
            std::rotate(
                m_entries.begin() + to, m_entries.begin() + from, m_entries.begin() + from + 1);
            endMoveRows();
        }
    }

    void drop(std::size_t from)
    {
        if (from >= m_entries.size())
            return;
        beginRemoveRows({}, static_cast<int>(from), static_cast<int>(m_entries.size()) - 1);
        const std::vector<Entry *> dropped(
            m_entries.begin() + static_cast<std::ptrdiff_t>(from), m_entries.end());
        m_entries.resize(from);
        endRemoveRows();
        // Later: their delegates live until the next turn of the event loop and read them until
        // then.
        for (Entry *entry : dropped)
            entry->deleteLater();
    }

    QByteArray m_role;
    Make m_make;
    std::vector<Entry *> m_entries;
};

} // namespace brimwatch::views
