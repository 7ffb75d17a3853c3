// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "ControllerModel.h"

ControllerModel::ControllerModel(QObject* parent) : QObject(parent)
{
}

ControllerModel::~ControllerModel() = default;

unsigned char ControllerModel::hasNucMask()
{
    return 0;
}
