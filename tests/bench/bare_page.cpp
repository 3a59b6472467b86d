// bare_page URL: the reference for the web view. Loads a page in an unmapped view.

#include <webkit2/webkit2.h>

int main(int argc, char** argv) {
  if (gtk_init_check(&argc, &argv) == FALSE || argc != 2) return 2;
  auto* const view = WEBKIT_WEB_VIEW(g_object_ref_sink(webkit_web_view_new()));
  webkit_web_view_load_uri(view, argv[1]);
  gtk_main();
}
