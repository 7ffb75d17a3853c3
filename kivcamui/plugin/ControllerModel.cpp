#include "ControllerModel.h"

ControllerModel::ControllerModel(QObject* parent) : QObject(parent)
{
}

ControllerModel::~ControllerModel() = default;

unsigned char ControllerModel::hasNucMask()
{
    return 0;
}
