# Links of the manual's pages, made for the tree, turned into links between the pages of the web site.
s#\]\((\.\./)*include/zorj/(\w+\.h)\)#](@ref \2)#g
s#\]\((\.\./)+zorcore/include/(\w+\.h)\)#](@ref \2)#g
s#\[([^]]*)\]\((\.\./)+[^)]*\)#\1#g
s#\]\((\w[^)#]*\.md)\#[^)]*\)#](\1)#g
