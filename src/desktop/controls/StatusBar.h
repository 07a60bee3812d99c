#pragma once

#include <QLabel>
#include <QStatusBar>

namespace KAL_AUTO_Node {

// A status bar of one text panel.
class StatusBar : public QStatusBar {
  public:
    explicit StatusBar(QWidget* parent) : QStatusBar(parent), panel_(new QLabel(this)) {
        setSizeGripEnabled(false);
        panel_->setTextFormat(Qt::PlainText);
        // A long text must not widen the window.
        panel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        addWidget(panel_, 1);
        QSizePolicy policy = sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        setSizePolicy(policy);
    }

    void SetPanelText(const QString& text) { panel_->setText(text); }

    // The width in pixels that the panel takes at most.
    void SetPanelWidth(int width) { panel_->setMaximumWidth(width); }

  private:
    QLabel* panel_;
};

} // namespace KAL_AUTO_Node
