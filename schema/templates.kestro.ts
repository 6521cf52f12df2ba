// The "templates" module: POST /api/app/templates/<action>.

module templates {
  page;
  template;
}
