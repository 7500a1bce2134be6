// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/doctor_report.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <functional>

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::Presence;
using desktop::SleepDelay;
using desktop::StoredPermission;

constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30U;

DoctorFindings allWell() {
    return {
        .soundLibraryVersion = "0.3.66",
        .sound =
            capture::SoundSurvey{
                .serverVersion = "0.3.65",
                .mayCapture = true,
                .hasSessionManager = true,
                .outputs = 2,
                .microphones = {{.device = {"usb", "Headset"}, .isDefault = true, .mixer = {}},
                                {.device = {"pci", "Laptop"}, .isDefault = false, .mixer = {}}}},
        .desktop = {.sessionBus = Presence::present,
                    .statusArea = Presence::present,
                    .portal = Presence::present,
                    .sleepDelay = SleepDelay::granted},
        .microphone = desktop::MicrophoneFacts(),
        .recordingFolder = "/home/me/Videos/Vantoro",
        .folder = FolderCheck{.exists = true,
                              .refusal = {},
                              .availableBytes = 45 * gibibyte + gibibyte / 2},
        .interruptedRecordings = 0,
        .faults = {}};
}

std::string textOf(const DoctorFindings& findings, AppLanguage language) {
    return doctorText(doctorReport(findings, language), language);
}

TEST(DoctorReport, saysInEnglishThatAllIsWell) {
    const auto report = doctorReport(allWell(), AppLanguage::english);
    EXPECT_TRUE(isAllWell(report));
    EXPECT_EQ(doctorText(report, AppLanguage::english),
              "ok  Sound server: PipeWire 0.3.65 (client library 0.3.66)\n"
              "ok  Session manager: running\n"
              "ok  Permission for system audio: granted by the sound server\n"
              "ok  Outputs: 2\n"
              "ok  Microphone: Headset (default)\n"
              "ok  Microphone: Laptop\n"
              "ok  Permission for the microphone: no setting of the desktop forbids it\n"
              "ok  Status area: there\n"
              "ok  Desktop portal: keeps the machine awake while recording\n"
              "ok  Login manager: lets Vantoro put off sleep until a recording is safe\n"
              "ok  Recording folder: /home/me/Videos/Vantoro, 45.5 GiB free\n"
              "ok  Interrupted recordings: none\n"
              "\n"
              "Nothing is wrong.\n");
}

TEST(DoctorReport, saysInChineseThatAllIsWell) {
    const auto report = doctorReport(allWell(), AppLanguage::chinese);
    EXPECT_TRUE(isAllWell(report));
    EXPECT_EQ(doctorText(report, AppLanguage::chinese),
              "ok  声音服务器：PipeWire 0.3.65（客户端库 0.3.66）\n"
              "ok  会话管理器：正在运行\n"
              "ok  系统声音权限：声音服务器已允许\n"
              "ok  输出设备：2 个\n"
              "ok  麦克风：Headset（默认）\n"
              "ok  麦克风：Laptop\n"
              "ok  麦克风权限：桌面设置没有禁止\n"
              "ok  状态区：可用\n"
              "ok  桌面门户：录音时可阻止自动睡眠\n"
              "ok  登录管理器：允许 Vantoro 推迟睡眠，直到录音安全保存\n"
              "ok  录音文件夹：/home/me/Videos/Vantoro，可用空间 45.5 GiB\n"
              "ok  中断的录音：没有\n"
              "\n"
              "一切正常。\n");
}

TEST(DoctorReport, endsWithWhatToDoAboutEachProblemOnce) {
    auto findings = allWell();
    findings.sound.reset();
    findings.desktop = {};
    findings.microphone.reset();
    const auto report = doctorReport(findings, AppLanguage::english);
    EXPECT_FALSE(isAllWell(report));
    EXPECT_EQ(doctorText(report, AppLanguage::english),
              "!   Sound server: PipeWire does not answer (client library 0.3.66)\n"
              "!   Permission for the microphone: the desktop does not answer\n"
              "!   Session bus: does not answer\n"
              "!   Login manager: does not answer\n"
              "ok  Recording folder: /home/me/Videos/Vantoro, 45.5 GiB free\n"
              "ok  Interrupted recordings: none\n"
              "\n"
              "What to do:\n"
              "- Start the sound server: systemctl --user restart pipewire wireplumber, or log out "
              "and in.\n"
              "- Log out and in again: a service of the desktop hangs.\n");
    EXPECT_TRUE(textOf(findings, AppLanguage::chinese)
                    .ends_with("\n处理办法：\n"
                               "- 请启动声音服务器：systemctl --user restart pipewire "
                               "wireplumber，或注销后重新登录。\n"
                               "- 请注销后重新登录：桌面的某项服务没有响应。\n"));
}

TEST(DoctorReport, namesEachCheckForPrograms) {
    const auto json = doctorJson(doctorReport(allWell(), AppLanguage::english));
    EXPECT_TRUE(json.ends_with("\n"));
    const auto report = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    EXPECT_TRUE(report["ok"].toBool());
    QStringList checks;
    for (const auto& entry : report["findings"].toArray()) {
        const auto finding = entry.toObject();
        EXPECT_TRUE(finding["ok"].toBool());
        EXPECT_TRUE(finding["advice"].isUndefined());
        checks.append(finding["check"].toString());
    }
    EXPECT_EQ(checks.join(' ').toStdString(),
              "sound-server session-manager system-audio outputs microphone microphone "
              "microphone-permission status-area portal sleep-delay folder "
              "interrupted-recordings");
}

TEST(DoctorReport, advisesProgramsOnEachProblem) {
    auto findings = allWell();
    findings.sound.reset();
    const auto json = doctorJson(doctorReport(findings, AppLanguage::chinese));
    const auto report = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
    EXPECT_FALSE(report["ok"].toBool(true));
    const auto server = report["findings"].toArray().first().toObject();
    EXPECT_EQ(server["check"].toString(), "sound-server");
    EXPECT_FALSE(server["ok"].toBool(true));
    EXPECT_EQ(server["text"].toString(), "声音服务器：PipeWire 没有响应（客户端库 0.3.66）");
    EXPECT_TRUE(server["advice"].toString().startsWith("请启动声音服务器"));
}

TEST(DoctorReport, endsWithWhatWentWrongEarlierWhichIsNoProblem) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    auto findings = allWell();
    findings.faults = {{std::chrono::sys_days(std::chrono::year(2026) / 11 / 23), "It failed."}};
    const auto report = doctorReport(findings, AppLanguage::english);
    EXPECT_TRUE(isAllWell(report));
    EXPECT_NE(doctorText(report, AppLanguage::english)
                  .find("\n    On 2026-11-23 00:00: It failed.\n\nNothing is wrong.\n"),
              std::string::npos);
    EXPECT_NE(doctorJson(report).find(R"({"check":"earlier-fault","ok":true,"past":true,)"),
              std::string::npos);
}

/// One deviation from a machine without problems.
struct Case {
    std::function<void(DoctorFindings&)> change;
    const char* english; ///< the resulting line
    const char* chinese;
    bool isProblem;
};

void expectLines(const Case& one) {
    auto findings = allWell();
    one.change(findings);
    for (const auto& [language, line] :
         {std::pair(AppLanguage::english, one.english), {AppLanguage::chinese, one.chinese}}) {
        const auto report = doctorReport(findings, language);
        const auto expected = (one.isProblem ? "!   " : "ok  ") + std::string(line) + "\n";
        const auto text = doctorText(report, language);
        EXPECT_NE(text.find(expected), std::string::npos) << expected << text;
        EXPECT_EQ(isAllWell(report), !one.isProblem) << line;
        EXPECT_EQ(text.find("\n- ") != std::string::npos, one.isProblem) << text;
    }
}

TEST(DoctorReport, namesWhatTheSoundServerLacks) {
    const Case table[] = {
        {[](auto& found) { found.sound->hasSessionManager = false; },
         "Session manager: not running", "会话管理器：没有运行", true},
        {[](auto& found) { found.sound->mayCapture = false; },
         "Permission for system audio: refused by the sound server",
         "系统声音权限：被声音服务器拒绝", true},
        {[](auto& found) { found.sound->outputs = 0; }, "Outputs: none", "输出设备：没有", true},
        {[](auto& found) { found.sound->playsCodedSound = true; },
         "System audio: an application sends coded sound straight to the receiver",
         "系统声音：有应用将编码音频直通到功放", true},
        {[](auto& found) { found.sound->microphones.clear(); }, "Microphone: none", "麦克风：没有",
         true},
        {[](auto& found) { found.sound->microphones[0].isDefault = false; },
         "Default microphone: none", "默认麦克风：没有", true},
        {[](auto& found) { found.sound->microphones[0].mixer.isMuted = true; },
         "Microphone: Headset (default): muted in the mixer",
         "麦克风：Headset（默认）：在混音器中已静音", true},
        {[](auto& found) { found.sound->microphones[1].mixer.isVolumeZero = true; },
         "Microphone: Laptop: its volume in the mixer is zero",
         "麦克风：Laptop：在混音器中的音量为零", true},
    };
    for (const auto& one : table) {
        expectLines(one);
    }
}

TEST(DoctorReport, advisesWhatFitsTheCause) {
    auto findings = allWell();
    findings.sound->microphones[0].mixer = {.isMuted = true, .isVolumeZero = true};
    findings.sound->mayCapture = false;
    auto text = textOf(findings, AppLanguage::english);
    EXPECT_NE(text.find("- Unmute the microphone Headset in the sound settings.\n"),
              std::string::npos);
    EXPECT_NE(text.find("- Permit Vantoro full access to PipeWire"), std::string::npos);
    findings.microphone->sandboxed = true;
    text = textOf(findings, AppLanguage::english);
    EXPECT_NE(text.find("- The sandbox hides what is played"), std::string::npos);
}

TEST(DoctorReport, acceptsNoDefaultMicrophoneWithoutASessionManager) {
    auto findings = allWell();
    findings.sound->microphones[0].isDefault = false;
    findings.sound->hasSessionManager = false;
    EXPECT_EQ(textOf(findings, AppLanguage::english).find("Default microphone"), std::string::npos);
}

TEST(DoctorReport, saysWhoDecidedOnTheMicrophonesPermission) {
    const Case table[] = {
        {[](auto& found) { found.microphone->disabledBySettings = true; },
         "Permission for the microphone: turned off in the desktop's privacy settings",
         "麦克风权限：在桌面的隐私设置中已关闭", true},
        {[](auto& found) { found.microphone->disabledByPortal = true; },
         "Permission for the microphone: turned off by the desktop portal's lockdown",
         "麦克风权限：被桌面门户的锁定策略关闭", true},
        {[](auto& found) {
             found.microphone->sandboxed = true;
             found.microphone->stored = StoredPermission::refused;
         },
         "Permission for the microphone: refused in the sandbox's permission store",
         "麦克风权限：沙盒的权限记录中已拒绝", true},
        {[](auto& found) {
             found.microphone->sandboxed = true;
             found.microphone->stored = StoredPermission::granted;
         },
         "Permission for the microphone: granted in the sandbox's permission store",
         "麦克风权限：沙盒的权限记录中已允许", false},
        {[](auto& found) { found.microphone->sandboxed = true; },
         "Permission for the microphone: not decided yet; the sandbox asks at the first recording",
         "麦克风权限：尚未决定，首次录音时沙盒会询问", false},
        {[](auto& found) { found.microphone->stored = StoredPermission::refused; },
         "Permission for the microphone: no setting of the desktop forbids it",
         "麦克风权限：桌面设置没有禁止", false},
        {[](auto& found) { found.microphone.reset(); },
         "Permission for the microphone: the desktop does not answer", "麦克风权限：桌面没有响应",
         true},
    };
    for (const auto& one : table) {
        expectLines(one);
    }
}

/// Only what lets a microphone be recorded, or prompts for permission, is no problem.
TEST(DoctorReport, agreesWithTheRecorderOnThePermission) {
    for (int number = 0; number < 24; ++number) {
        auto findings = allWell();
        findings.microphone = {.disabledBySettings = (number & 1) != 0,
                               .disabledByPortal = (number & 2) != 0,
                               .sandboxed = (number & 4) != 0,
                               .stored = static_cast<StoredPermission>(number / 8),
                               .chosenSourceHidden = false};
        const auto status = microphoneAuthorization(*findings.microphone);
        EXPECT_EQ(isAllWell(doctorReport(findings, AppLanguage::english)),
                  status == AuthorizationStatus::authorized ||
                      status == AuthorizationStatus::notDetermined)
            << number;
    }
}

TEST(DoctorReport, namesWhatTheDesktopLacks) {
    const Case table[] = {
        {[](auto& found) {
             found.desktop.sessionBus = found.desktop.statusArea = found.desktop.portal =
                 Presence::absent;
         },
         "Session bus: there is none, so no status area and no portal",
         "会话总线：没有，因此也没有状态区和桌面门户", true},
        {[](auto& found) { found.desktop.sessionBus = Presence::unknown; },
         "Session bus: does not answer", "会话总线：没有响应", true},
        {[](auto& found) { found.desktop.statusArea = Presence::absent; },
         "Status area: the desktop shows none", "状态区：桌面没有显示", true},
        {[](auto& found) { found.desktop.statusArea = Presence::unknown; },
         "Status area: the desktop does not answer", "状态区：桌面没有响应", true},
        {[](auto& found) { found.desktop.portal = Presence::absent; },
         "Desktop portal: not there, or without a way to keep the machine awake",
         "桌面门户：没有，或无法阻止自动睡眠", true},
        {[](auto& found) { found.desktop.portal = Presence::unknown; },
         "Desktop portal: does not answer", "桌面门户：没有响应", true},
        {[](auto& found) { found.desktop.sleepDelay = SleepDelay::refused; },
         "Login manager: does not let Vantoro put off sleep", "登录管理器：不允许 Vantoro 推迟睡眠",
         true},
        {[](auto& found) { found.desktop.sleepDelay = SleepDelay::noLoginManager; },
         "Login manager: not there", "登录管理器：没有", true},
        {[](auto& found) { found.desktop.sleepDelay = SleepDelay::unknown; },
         "Login manager: does not answer", "登录管理器：没有响应", true},
    };
    for (const auto& one : table) {
        expectLines(one);
    }
}

TEST(DoctorReport, saysWhatCanBeDoneInTheFolder) {
    const Case table[] = {
        {[](auto& found) { found.folder->exists = false; },
         "Recording folder: /home/me/Videos/Vantoro (created by the first recording), 45.5 GiB "
         "free",
         "录音文件夹：/home/me/Videos/Vantoro（首次录音时创建），可用空间 45.5 GiB", false},
        {[](auto& found) {
             found.folder->refusal = std::make_error_code(std::errc::permission_denied);
         },
         "Recording folder: /home/me/Videos/Vantoro: no file can be created (Permission denied)",
         "录音文件夹：/home/me/Videos/Vantoro：无法创建文件（权限不足）", true},
        {[](auto& found) { found.folder->availableBytes = gibibyte - 1; },
         "Recording folder: /home/me/Videos/Vantoro, only 1023 MiB free",
         "录音文件夹：/home/me/Videos/Vantoro，可用空间只有 1023 MiB", true},
        {[](auto& found) { found.folder->availableBytes = gibibyte; },
         "Recording folder: /home/me/Videos/Vantoro, 1.0 GiB free",
         "录音文件夹：/home/me/Videos/Vantoro，可用空间 1.0 GiB", false},
        {[](auto& found) { found.folder->availableBytes.reset(); },
         "Recording folder: /home/me/Videos/Vantoro", "录音文件夹：/home/me/Videos/Vantoro", false},
        {[](auto& found) { found.folder.reset(); },
         "Recording folder: /home/me/Videos/Vantoro: its disk does not answer",
         "录音文件夹：/home/me/Videos/Vantoro：所在的磁盘没有响应", true},
        {[](auto& found) { found.interruptedRecordings = 2; },
         "Interrupted recordings waiting to be finished: 2", "等待完成的中断录音：2 段", true},
        {[](auto& found) { found.interruptedRecordings.reset(); },
         "Interrupted recordings: their files could not be read in time",
         "中断的录音：未能及时读取文件", true},
    };
    for (const auto& one : table) {
        expectLines(one);
    }
}

TEST(DoctorReport, omitsRecordingsOnADiskThatDoesNotAnswer) {
    auto findings = allWell();
    findings.folder.reset();
    findings.interruptedRecordings.reset();
    EXPECT_EQ(textOf(findings, AppLanguage::english).find("Interrupted"), std::string::npos);
}

} // namespace
} // namespace vantoro::testing
