#include "FormWidgets.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace ql {

QLabel* pictureLabel(QWidget* parent, const QString& name, const QString& resource, const QSize& size) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(resource);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    auto* label = named(new QLabel(parent), name);
    label->setPixmap(pixmap);
    label->setFixedSize(size);
    return label;
}

QPushButton* checkButton(QWidget* parent, const QString& name, const QString& caption) {
    auto* button = named(new QPushButton(caption, parent), name);
    button->setCheckable(true);
    return button;
}

} // namespace ql
