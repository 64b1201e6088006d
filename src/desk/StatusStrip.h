#pragma once

#include <QCheckBox>
#include <QWidget>

#include "platform/Settings.h"
#include "platform/termdev/DeviceStatus.h"

namespace desk {

class DeskPrinter;

/// A lamp with the name of what it stands for and its state in words.
class Lamp : public QWidget {
    Q_OBJECT

  public:
    enum Light { Off, Green, Yellow, Red };

    explicit Lamp(const QString& name, QWidget* parent = nullptr);
    void set(Light light, const QString& state);
    Light light() const { return light_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString name_;
    QString state_;
    Light light_ = Off;
};

/// Lamps for the printer, the reader and the host, and under each the faults that can be switched on there.
class StatusStrip : public QWidget {
    Q_OBJECT

  public:
    explicit StatusStrip(const platform::Settings& settings, QWidget* parent = nullptr);
    /// Ends the faults: they last as long as the desk.
    ~StatusStrip() override;

    /// Shows the states as they are now.
    void refresh();

  private:
    void layOut();
    void connectPrinterFaults(const platform::Settings& settings);
    void connectHostFault();
    void setPrinterFault();
    void showPrinter(const platform::termdev::DeviceStatus& status);

    DeskPrinter* deskPrinter_ = nullptr;  ///< Null where a real printer prints.
    Lamp* printer_;
    Lamp* reader_;
    Lamp* host_;
    QCheckBox* noPaper_;
    QCheckBox* printerGone_;
    QCheckBox* hostSilent_;
};

}  // namespace desk
