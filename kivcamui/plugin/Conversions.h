// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/CStringW.h>
#include <kiv/TArray.h>

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <QUrl>

// Crossing between the camera library's texts and Qt's.
namespace kiv::cam::ui {

// UTF-8 decoding; a null text is the empty string.
inline QString toQString(const kiv::CString& text)
{
    return QString::fromUtf8(text.c_str());
}

inline kiv::CString toCString(const QString& text)
{
    return kiv::CString(text.toUtf8().constData(), -1);
}

inline kiv::TArray<kiv::CString> toCStrings(const QStringList& texts)
{
    kiv::TArray<kiv::CString> converted;
    for (const QString& text : texts)
        converted.add(toCString(text));
    return converted;
}

// A file name handed in from QML is a URL; a plain path without a scheme gives an empty path.
inline kiv::CStringW toLocalPath(const QString& url)
{
    return kiv::CStringW(QUrl(url).toLocalFile().toStdWString().c_str());
}

// An icon base name is shown from the library's resources.
inline QString iconUrl(const kiv::CString& iconName)
{
    return "qrc:///data/images/" + toQString(iconName) + ".png";
}

inline bool iconExists(const kiv::CString& iconName)
{
    return QFileInfo::exists(":/data/images/" + toQString(iconName) + ".png");
}

} // namespace kiv::cam::ui
