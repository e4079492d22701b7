// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QList>

#include <algorithm>
#include <concepts>
#include <iterator>
#include <type_traits>

/// A table model over values with a `key()`. New values are merged into the old ones instead of
/// replacing them, so that selection, current row and scroll position of a view stay with their
/// row through a refresh.
template <typename Row>
class RowModel : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

    const QList<Row> &rows() const { return m_rows; }

    /// Makes `next` the rows. Keys are taken to be unique; where they are not, and where the change
    /// is in too many places to be worth following, views start over.
    void setRows(QList<Row> next)
    {
        const Change change(m_rows, next);
        if (change.isWorthFollowing()) {
            removeMissing(change);
            reorder(change);
            insertNew(change, next);
        }
        // Not so where following was not worth it, or a key outside the change occurs again in it.
        if (std::equal(m_rows.cbegin(), m_rows.cend(), next.cbegin(), next.cend(), haveSameKey)) {
            next.swap(m_rows);
            tellWhatChanged(next);
        } else {
            this->beginResetModel();
            m_rows = std::move(next);
            this->endResetModel();
        }
    }

private:
    using Key = std::decay_t<decltype(std::declval<const Row &>().key())>;
    using PlaceOfKey = QHash<Key, qsizetype>;

    static bool haveSameKey(const Row &a, const Row &b) { return a.key() == b.key(); }

    /// Where two lists of rows differ: from `begin` on, without the rows at the end that both have.
    /// A refresh rarely changes more than a few rows, and only those are worth a hash table.
    struct Change {
        Change(const QList<Row> &rows, const QList<Row> &next)
        {
            const auto firsts =
                std::mismatch(rows.cbegin(), rows.cend(), next.cbegin(), next.cend(), haveSameKey);
            begin = firsts.first - rows.cbegin();
            const auto lasts = std::mismatch(
                rows.crbegin(), std::make_reverse_iterator(firsts.first), next.crbegin(),
                std::make_reverse_iterator(firsts.second), haveSameKey);
            sameAtEnd = lasts.first - rows.crbegin();
            const qsizetype oldEnd = rows.size() - sameAtEnd;
            newEnd = next.size() - sameAtEnd;
            if (oldEnd == begin || newEnd == begin) { // one run has come, or one has gone
                runs = 1;
                return;
            }
            if (oldEnd - begin > mostDiffering || newEnd - begin > mostDiffering) {
                isShort = false;
                return;
            }
            places = placesOf(next, begin, newEnd);
            const PlaceOfKey old = placesOf(rows, begin, oldEnd);
            unique = places.size() == newEnd - begin && old.size() == oldEnd - begin;
            runs = runsMissing(rows, begin, oldEnd, places) + runsMissing(next, begin, newEnd, old);
        }

        /// Every run of neighbouring rows that go or come shifts the whole list once.
        bool isWorthFollowing() const { return isShort && unique && runs <= 100; }

        /// Following more rows than that would keep the interface thread busy for too long.
        static constexpr qsizetype mostDiffering = 2'000;

        qsizetype begin = 0;
        qsizetype sameAtEnd = 0; // number of rows
        qsizetype newEnd = 0;
        PlaceOfKey places; // of the new rows that differ; empty where all of them are new
        bool isShort = true;
        bool unique = true;
        qsizetype runs = 0;
    };

    static PlaceOfKey placesOf(const QList<Row> &rows, qsizetype begin, qsizetype end)
    {
        PlaceOfKey places;
        places.reserve(end - begin);
        for (qsizetype i = begin; i < end; ++i)
            places.insert(rows[i].key(), i);
        return places;
    }

    /// How many runs of neighbouring rows are not in `places`.
    static qsizetype runsMissing(const QList<Row> &rows, qsizetype begin, qsizetype end,
                                 const PlaceOfKey &places)
    {
        qsizetype count = 0;
        bool before = true;
        for (qsizetype i = begin; i < end; ++i) {
            const bool here = places.contains(rows[i].key());
            count += before && !here;
            before = here;
        }
        return count;
    }

    void removeMissing(const Change &change)
    {
        for (qsizetype end = m_rows.size() - change.sameAtEnd; end > change.begin; --end) {
            qsizetype first = end;
            while (first > change.begin && !change.places.contains(m_rows[first - 1].key()))
                --first;
            if (first == end)
                continue;
            this->beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end - 1));
            m_rows.remove(first, end - first);
            this->endRemoveRows();
            end = first + 1;
        }
    }

    /// Puts the rows that stay into their new order.
    void reorder(const Change &change)
    {
        const auto first = m_rows.cbegin() + change.begin;
        const auto last = m_rows.cend() - change.sameAtEnd;
        const auto inOrder = [&change](const Row &a, const Row &b) {
            return change.places.value(a.key()) < change.places.value(b.key());
        };
        if (std::is_sorted(first, last, inOrder))
            return;
        Q_EMIT this->layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
        const QList<Row> before = m_rows;
        std::sort(m_rows.begin() + change.begin, m_rows.end() - change.sameAtEnd, inOrder);
        const PlaceOfKey after = placesOf(m_rows, change.begin, m_rows.size() - change.sameAtEnd);
        const QModelIndexList indexes = this->persistentIndexList();
        for (const QModelIndex &index : indexes) {
            const auto row = static_cast<int>(after.value(before[index.row()].key(), index.row()));
            this->changePersistentIndex(index, this->index(row, index.column()));
        }
        Q_EMIT this->layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    }

    void insertNew(const Change &change, const QList<Row> &next)
    {
        const auto isNew = [this, &change, &next](qsizetype i, qsizetype old) {
            return i < change.newEnd &&
                   (old >= m_rows.size() - change.sameAtEnd || next[i].key() != m_rows[old].key());
        };
        for (qsizetype at = change.begin; at < change.newEnd; ++at) {
            qsizetype end = at;
            while (isNew(end, at))
                ++end;
            if (end == at)
                continue;
            this->beginInsertRows({}, static_cast<int>(at), static_cast<int>(end - 1));
            m_rows.insert(at, end - at, next[at]);
            std::copy(next.cbegin() + at, next.cbegin() + end, m_rows.begin() + at);
            this->endInsertRows();
            at = end - 1;
        }
    }

    /// Every view then paints those rows anew, so no more of them than have changed, where the rows
    /// can be compared.
    void tellWhatChanged(const QList<Row> &before)
    {
        if constexpr (std::equality_comparable<Row>) {
            const QList<Row> &now = m_rows;
            for (qsizetype end = 0; end < now.size(); ++end) {
                const qsizetype begin = end;
                while (end < now.size() && !(now[end] == before[end]))
                    ++end;
                if (end > begin)
                    tellOfRows(begin, end);
            }
        } else if (!m_rows.isEmpty()) {
            tellOfRows(0, m_rows.size());
        }
    }

    void tellOfRows(qsizetype begin, qsizetype end)
    {
        Q_EMIT this->dataChanged(this->index(static_cast<int>(begin), 0),
                                 this->index(static_cast<int>(end - 1), this->columnCount() - 1));
    }

    QList<Row> m_rows;
};
