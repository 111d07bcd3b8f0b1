-- Makes pages for a browser of the guide: links lead to the pages, each number of an error can be linked to, and the page
-- of the errors begins with an index of them.

local numbers = {}

function Link(link)
  link.target = link.target:gsub("README%.md", "index.html"):gsub("errors%.md", "errors.html")
  return link
end

function Table(tbl)
  for _, body in ipairs(tbl.bodies) do
    for _, row in ipairs(body.body) do
      local number = pandoc.utils.stringify(row.cells[1].contents)
      if number:match("^%d+$") then
        row.attr.identifier = "e" .. number
        table.insert(numbers, number)
      end
    end
  end
  return tbl
end

function Pandoc(doc)
  for at, block in ipairs(doc.blocks) do
    if block.t == "Header" and block.level == 1 then
      doc.meta.title = pandoc.utils.stringify(block.content)
      if #numbers > 0 then
        local links = {}
        for _, number in ipairs(numbers) do
          table.insert(links, pandoc.Link(number, "#e" .. number))
          table.insert(links, pandoc.Space())
        end
        table.insert(doc.blocks, at + 1, pandoc.Div({ pandoc.Para(links) }, pandoc.Attr("", { "numbers" })))
      end
      break
    end
  end
  return doc
end
