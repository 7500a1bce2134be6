// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/bus/private_bus.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusVariant>

namespace vantoro::testing {

namespace {

constexpr const char* configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%1</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

void write(const QString& path, const QString& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        throw std::runtime_error("cannot write " + path.toStdString());
    }
}

QString readLine(FILE* file) {
    std::array<char, 1024> line{};
    return std::fgets(line.data(), line.size(), file) == nullptr
               ? QString()
               : QString::fromUtf8(line.data()).trimmed();
}

} // namespace

PrivateBus::PrivateBus() {
    const QString file = folder_.filePath("bus.conf");
    write(file, QString(configuration).arg(folder_.path()));
    // Ends even if the test crashes.
    const auto command = "exec setpriv --pdeathsig KILL dbus-daemon --nofork --print-address=1 "
                         "--print-pid=1 --config-file='" +
                         file + "' 2>'" + folder_.filePath("complaints") + "'";
    output_ = ::popen(command.toUtf8().constData(), "r");
    if (output_ == nullptr) {
        throw std::runtime_error("the private bus cannot be started");
    }
    address_ = readLine(output_);
    process_ = readLine(output_).toInt();
    if (process_ <= 0) {
        const int status = ::pclose(output_);
        throw std::runtime_error("the private bus did not start: status " + std::to_string(status) +
                                 ", " + complaints());
    }
}

PrivateBus::~PrivateBus() {
    ::kill(process_, SIGTERM);
    ::kill(process_, SIGCONT); // it may be frozen
    ::pclose(output_);         // waits for its exit
}

QDBusConnection PrivateBus::connect(const QString& name) const {
    auto connection = QDBusConnection::connectToBus(address_, name);
    if (!connection.isConnected()) {
        throw std::runtime_error("no connection to the private bus: " +
                                 connection.lastError().message().toStdString() + complaints());
    }
    return connection;
}

std::string PrivateBus::complaints() const {
    QFile file(folder_.filePath("complaints"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "nothing said";
}

void PrivateBus::addStartableService(const QString& name) {
    write(folder_.filePath(name + ".service"),
          QString("[D-BUS Service]\nName=%1\nExec=/usr/bin/touch %2\n")
              .arg(name, folder_.filePath("started")));
    auto bus = connect("configuring");
    const auto reply = bus.call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    QDBusConnection::disconnectFromBus("configuring");
    if (reply.type() != QDBusMessage::ReplyMessage) {
        throw std::runtime_error(reply.errorMessage().toStdString());
    }
}

bool PrivateBus::startedAService() const {
    return QFile::exists(folder_.filePath("started"));
}

void PrivateBus::end() const {
    if (::kill(process_, SIGTERM) != 0) {
        throw std::runtime_error("the bus cannot be ended");
    }
}

void PrivateBus::freeze() const {
    if (::kill(process_, SIGSTOP) != 0) {
        throw std::runtime_error("the private bus cannot be frozen");
    }
}

BusService::BusService(const PrivateBus& bus, const QString& name, Answer answer)
    : name_(name), object_(std::move(answer)) {
    auto connection = bus.connect(name_);
    const bool offered = connection.registerVirtualObject("/", &object_, QDBusConnection::SubPath);
    object_.moveToThread(&thread_);
    if (!offered || !connection.registerService(name_)) {
        const auto reason = connection.lastError().message().toStdString();
        QDBusConnection::disconnectFromBus(name_);
        throw std::runtime_error("cannot offer " + name.toStdString() + ": " + reason);
    }
    thread_.start();
}

BusService::~BusService() {
    // The connection is closed later, on Qt's bus thread, which must not find the object then.
    QDBusConnection(name_).unregisterObject("/");
    thread_.quit();
    thread_.wait();
    QDBusConnection::disconnectFromBus(name_);
}

bool BusService::Object::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    message.setDelayedReply(true); // only our own replies are sent
    const auto reply = answer_(message);
    return reply.type() == QDBusMessage::InvalidMessage || bus.send(reply);
}

BusService::Answer lockdown(bool microphoneDisabled) {
    return [microphoneDisabled](const QDBusMessage& question) {
        const bool understood =
            question.path() == "/org/freedesktop/portal/desktop" &&
            question.interface() == "org.freedesktop.DBus.Properties" &&
            question.member() == "Get" &&
            question.arguments() ==
                QVariantList{"org.freedesktop.impl.portal.Lockdown", "disable-microphone"};
        return understood
                   ? question.createReply(QVariant::fromValue(QDBusVariant(microphoneDisabled)))
                   : question.createErrorReply(QDBusError::InvalidArgs, "not the property");
    };
}

BusService::Answer permissionStore(const QString& application, const QStringList& words) {
    qDBusRegisterMetaType<QMap<QString, QStringList>>();
    return [=](const QDBusMessage& question) {
        const bool found = question.path() == "/org/freedesktop/impl/portal/PermissionStore" &&
                           question.member() == "Lookup" &&
                           question.arguments() == QVariantList{"devices", "microphone"};
        if (!found) {
            return question.createErrorReply("org.freedesktop.portal.Error.NotFound", "no entry");
        }
        const QMap<QString, QStringList> entry{{application, words}};
        return question.createReply(
            {QVariant::fromValue(entry), QVariant::fromValue(QDBusVariant(false))});
    };
}

QDBusMessage noAnswer(const QDBusMessage&) {
    return {};
}

} // namespace vantoro::testing
