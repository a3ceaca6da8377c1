// The settings of the present user: one file beside those of the user's other programs.
#pragma once

#include <QSettings>

namespace quorvane {

class UserSettings : public QSettings {
public:
    UserSettings()
        : QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("quorvane"),
                    QStringLiteral("quorvane")) {}
};

}  // namespace quorvane
