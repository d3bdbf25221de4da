#include "TextEngine.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <memory>

namespace {
struct Unref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// A letter is ink on paper; pictures of several colours print as something else and can't be
/// copied out again.
void withoutColours(FcPattern *pattern, gpointer)
{
    FcPatternDel(pattern, FC_COLOR);
    FcPatternAddBool(pattern, FC_COLOR, FcFalse);
}

std::unique_ptr<PangoContext, Unref> makeContext()
{
    PangoFontMap *fonts = pango_cairo_font_map_new();
    pango_fc_font_map_set_default_substitute(PANGO_FC_FONT_MAP(fonts), withoutColours, nullptr,
                                             nullptr);
    std::unique_ptr<PangoContext, Unref> context(pango_font_map_create_context(fonts));
    g_object_unref(fonts); // the context keeps it
    cairo_font_options_t *options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    pango_context_set_language(context.get(), pango_language_from_string("en-us"));
    return context;
}
} // namespace

std::unique_lock<std::recursive_mutex> TextEngine::lock()
{
    static std::recursive_mutex mutex;
    return std::unique_lock(mutex);
}

PangoContext *TextEngine::context()
{
    static const std::unique_ptr<PangoContext, Unref> context = makeContext();
    return context.get();
}
