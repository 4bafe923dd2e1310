#include "app/Screenshots.h"

#include "app/frmFac.h"
#include "app/frmOpen.h"
#include "app/frmSerStageMotor.h"
#include "app/frmTop.h"
#include "controls/Gallery.h"
#include "customer/CustomerWindows.h"
#include "driver/Handles.h"
#include "factory/FactoryWindows.h"
#include "frontpanel/frmSimPanel.h"
#include "kit/Messages.h"
#include "kit/Navigation.h"
#include "kit/dlgConfigFile.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "operation/OperationWindows.h"
#include "piezo/PiezoWindows.h"
#include "service/ServiceWindows.h"
#include "simulator/SimInstrument.h"
#include "simulator/SimulatedInstrument.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QTimer>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

namespace vss {
namespace {

using WindowMaker = std::function<std::unique_ptr<QWidget>()>;

struct Scene {
    QString file; // without ".png"
    WindowMaker make;
};

template <class W> WindowMaker window() {
    return [] { return std::make_unique<W>(); };
}

WindowMaker versionWindow(bool factoryMode) {
    return [factoryMode] { return std::make_unique<frmVersion>(nullptr, factoryMode); };
}

WindowMaker mainMenuAt(int level) {
    return [level] {
        auto menu = std::make_unique<frmOpen>();
        menu->setLevel(level);
        return menu;
    };
}

// The windows to render, in order: the shell's own, then each window library's list.
std::vector<Scene> scenes() {
    std::vector<Scene> list{
        {QStringLiteral("frmTop"), window<frmTop>()},
        {QStringLiteral("frmOpen-level0"), mainMenuAt(0)},
        {QStringLiteral("frmOpen-level1"), mainMenuAt(1)},
        {QStringLiteral("frmOpen-level2"), mainMenuAt(2)},
        {QStringLiteral("frmFac"), window<frmFac>()},
        {QStringLiteral("frmSerStageMotor"), window<frmSerStageMotor>()},
        {QStringLiteral("frmVersion"), versionWindow(false)},
        {QStringLiteral("frmVersion-factory"), versionWindow(true)},
        {QStringLiteral("controls"), [] { return std::unique_ptr<QWidget>(createControlsGallery(nullptr)); }},
        {QStringLiteral("frmSimPanel"),
         [] { return std::make_unique<frmSimPanel>(simulatedInstrument(globals().driverOptions)); }},
    };
    for (ScreenshotScenes (*library)() : {operationScreenshots, customerScreenshots, factoryScreenshots,
                                          piezoScreenshots, serviceScreenshots}) {
        for (auto& [name, make] : library())
            list.push_back({name, [make = std::move(make)] { return make(nullptr); }});
    }
    return list;
}

// The client area under a plain title bar with the caption, the way the window looks on a desktop. The image
// has the window's device pixel ratio: at 200 % every pixel of the window is kept, and the frame and the
// caption are drawn at the same scale.
QImage framed(QWidget& w) {
    const QPixmap client = w.grab();
    const qreal ratio = client.devicePixelRatio();
    const QSize clientSize = client.deviceIndependentSize().toSize();
    const int titleHeight = 24;
    const int border = 1;
    QImage image(QSize(clientSize.width() + 2 * border, clientSize.height() + titleHeight + 2 * border) *
                     ratio,
                 QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(QColor(0x40, 0x40, 0x40));
    QPainter painter(&image);
    painter.fillRect(border, border, clientSize.width(), titleHeight, QColor(0x2b, 0x4a, 0x7a));
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(border + 8, border, clientSize.width() - 16, titleHeight),
                     Qt::AlignVCenter | Qt::AlignLeft, w.windowTitle());
    painter.drawPixmap(border, border + titleHeight, client);
    return image;
}

QString sceneName(const Scene& scene, const QWidget& w) {
    if (!scene.file.isEmpty())
        return scene.file;
    const QString className = QString::fromLatin1(w.metaObject()->className());
    return className.section(QStringLiteral("::"), -1);
}

// A window that cannot be built on this instrument is reported, and the others are still rendered.
bool render(const Scene& scene, const QDir& dir) {
    std::unique_ptr<QWidget> w;
    try {
        w = scene.make();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "could not render %s: %s\n",
                     qPrintable(scene.file.isEmpty() ? QStringLiteral("a window") : scene.file), e.what());
        return false;
    }
    w->show();
    // Let the windows that poll the instrument every 200 ms show their first readings.
    QEventLoop settle;
    QTimer::singleShot(300, &settle, &QEventLoop::quit);
    settle.exec();
    const QString path = dir.filePath(sceneName(scene, *w) + QStringLiteral(".png"));
    const bool saved = framed(*w).save(path);
    std::fprintf(saved ? stdout : stderr, "%s %s\n", saved ? "wrote" : "could not write",
                 qPrintable(QDir::toNativeSeparators(path)));
    w->hide();
    return saved;
}

} // namespace

ScreenshotScenes screenshotScenes() {
    ScreenshotScenes list;
    for (Scene& scene : scenes())
        list.emplace_back(scene.file, [make = std::move(scene.make)](QWidget*) { return make(); });
    return list;
}

int runScreenshots(const QString& dirPath, DriverOptions options) {
    QDir dir(dirPath);
    if (!dir.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "--screenshots %s: the folder cannot be created\n", qPrintable(dirPath));
        return 1;
    }
    setMessageHandler([](const std::string& text, const std::string& title) {
        std::fprintf(stderr, "message (%s): %s\n", title.c_str(), text.c_str());
    });
    dlgConfigFile::setChooser([](const FileDialogRequest&) { return std::nullopt; });

    options.forceSimulator = true;
    if (!options.simulator && options.simStatePath.empty())
        options.simulator = std::make_shared<sim::SimInstrument>(
            sim::SimOptions{.statePath = ":memory:",
                            .listLower = static_cast<std::int16_t>(options.simOneBasedLists ? 1 : 0)});
    options.simScenario.clear();       // the windows are rendered as they stand, without timed steps
    globals().driverOptions = options; // the front panel's scene shows this instrument

    DriverHandles& h = handles();
    bool ok = true;
    try {
        std::shared_ptr<DriverObject> object = createDriverObject(globals().driverProgId, options);
        acquireHandles(*object, h);
        h.driver->Open(std::string(kDefaultResource));
        h.service->BeginService();
        prepareOperationCheck(h); // the windows show an instrument at home, as after "Operation Check"
        for (const Scene& scene : scenes())
            ok = render(scene, dir) && ok;
        h.driver->Close();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "screenshots stopped: %s\n", e.what());
        ok = false;
    }
    releaseHandles(h);
    h.diskSize.reset();
    return ok ? 0 : 1;
}

} // namespace vss
