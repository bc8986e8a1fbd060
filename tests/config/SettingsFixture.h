#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <memory>
#include <vector>

#include "config/AutostartRegistrar.h"
#include "config/Settings.h"
#include "config/SettingsStore.h"

namespace tavren::test {

// Remembers every registration request instead of touching the real session.
class FakeAutostart : public AutostartRegistrar {
  public:
    std::vector<bool> requests;
    bool succeed = true;

    bool setEnabled(bool enabled) override {
        requests.push_back(enabled);
        return succeed;
    }
    bool isEnabled() const override { return !requests.empty() && requests.back(); }
};

// A throwaway data root with its own settings file.
class SettingsFixture : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }

    QString root() const { return dir.path(); }
    QString iniPath() const { return dir.filePath(QStringLiteral("settings.ini")); }
    // A fresh store on the same file, as the next start of the client would see it.
    std::unique_ptr<SettingsStore> openStore() const {
        return std::make_unique<SettingsStore>(iniPath());
    }
    void writeFile(const QString& relative, const QByteArray& bytes) const {
        QFile file(dir.filePath(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir dir;
    FakeAutostart autostart;
};

}  // namespace tavren::test
