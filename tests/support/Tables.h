#pragma once

#include "AppError.h"

#include <QFile>
#include <QTest>

// Tables of cases as arrays of plain structs, one row a case and every row named by its first
// member: the _data() function adds the rows, the test function fetches the one that runs.
template <typename Row, size_t N> void addRows(const Row (&rows)[N])
{
    QTest::addColumn<int>("row");
    for (size_t i = 0; i < N; ++i)
        QTest::newRow(rows[i].name) << int(i);
}

template <typename Row, size_t N> const Row &fetchRow(const Row (&rows)[N])
{
    return rows[*static_cast<const int *>(QTest::qData("row", qMetaTypeId<int>()))];
}

// What a statement gives as text, or "error N" with the number of the AppError it throws, so that
// results and failures stand in one column.
template <typename Statement> QString outcome(Statement &&statement)
{
    try {
        return statement();
    } catch (const AppError &error) {
        return QStringLiteral("error %1").arg(error.number);
    }
}

// Files as the tests set them up and read them back, byte for byte.
inline const QByteArray kNoFile = QByteArrayLiteral("<no file>");

inline QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : kNoFile;
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
