#pragma once

#include "VxComboBox.h"

class AppModel;

/// The header's list of states: it shows the model's state, and what is chosen in it is the model's
/// at once.
class StateMenu final : public VxComboBox
{
    Q_OBJECT

public:
    explicit StateMenu(AppModel &model, QWidget *parent = nullptr);
};
