// Lines, view and selection of text fields, asked for and set by the application.
#include "MacTextField.h"

static bool Has_Properties(ZVItem const* item)
{
    return item && (item->type == ZV_GAD_STRING || item->type == ZV_GAD_EDITOR);
}

void GetTextEditorPropertiesZV(ZVItem const* item, ZVTextEditorProperties* properties)
{
    if (!properties || !Has_Properties(item)) return;
    // What is not on screen has one line and nothing else.
    *properties = {};
    properties->lineCount = 1;
    if (TextField* const field = Text_Field_Of(item)) field->Get_Properties(*properties);
}

void GetTextEditorPropertiesZV(unsigned short id, ZVTextEditorProperties* properties)
{
    GetTextEditorPropertiesZV(FindItemZV(id), properties);
}

void SetTextEditorPropertiesZV(ZVItem* item, ZVTextEditorProperties const* properties)
{
    if (!properties || !Has_Properties(item)) return;
    if (TextField* const field = Text_Field_Of(item)) field->Set_Properties(*properties);
}

void SetTextEditorPropertiesZV(unsigned short id, ZVTextEditorProperties const* properties)
{
    SetTextEditorPropertiesZV(FindItemZV(id), properties);
}
